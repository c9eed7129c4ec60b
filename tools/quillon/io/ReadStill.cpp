#include <algorithm>
#include <array>
#include <new>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/quillon/io/Still.h"
#include "tools/quillon/io/StillError.h"
#include "tools/quillon/io/StillReaders.h"
#include "tools/quillon/io/StillSource.h"

namespace {

/// Bytes at a place by which files of a format are known.
struct Mark {
  std::size_t offset;
  std::string_view bytes;
};

struct Signature {
  Mark mark;
  Still (*read)(const StillSource&);
};

constexpr std::array<Signature, 4> kSignatures{{
    {{0, {"\x76\x2f\x31\x01", 4}}, ReadExr},
    {{0, {"\x89PNG\r\n\x1a\n", 8}}, ReadPng},
    {{0, {"#?", 2}}, ReadRadiance},
    {{4, {"ftyp", 4}}, ReadAvif},
}};

constexpr std::array<std::pair<Mark, std::string_view>, 12> kOtherFormats{{
    {{0, {"\xff\x0a", 2}}, "JPEG XL"},
    {{4, {"JXL \r\n\x87\n", 8}}, "JPEG XL"},
    {{0, {"\xff\xd8\xff", 3}}, "JPEG"},
    {{4, {"jP  \r\n\x87\n", 8}}, "JPEG 2000"},
    {{0, {"II*\0", 4}}, "TIFF"},
    {{0, {"MM\0*", 4}}, "TIFF"},
    {{8, {"WEBP", 4}}, "WebP"},
    {{4, {"ftypheic", 8}}, "HEIC"},
    {{4, {"ftypheix", 8}}, "HEIC"},
    {{4, {"ftypheim", 8}}, "HEIC"},
    {{4, {"ftypheis", 8}}, "HEIC"},
    {{4, {"ftyphevc", 8}}, "HEIC"},
}};

bool Matches(const Mark& mark, std::span<const std::uint8_t> bytes) {
  return bytes.size() >= mark.offset + mark.bytes.size() &&
         std::equal(mark.bytes.begin(), mark.bytes.end(),
                    bytes.begin() + static_cast<std::ptrdiff_t>(mark.offset),
                    [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

bool MatchesAnyStill(std::span<const std::uint8_t> head) {
  return std::any_of(kSignatures.begin(), kSignatures.end(),
                     [head](const Signature& signature) { return Matches(signature.mark, head); });
}

/// Throws where the bytes begin as a picture of a format that is not read.
void RefuseOtherFormats(const std::filesystem::path& path, std::span<const std::uint8_t> head) {
  for (const auto& [mark, name] : kOtherFormats) {
    if (!Matches(mark, head)) continue;
    throw StillError(StillErrorKind::CannotRead, path,
                     "it is a " + std::string(name) + " picture, which is not read",
                     "convert it to EXR, PNG or AVIF");
  }
}

Still ReadKnown(const StillSource& source) {
  RefuseOtherFormats(source.path, source.bytes);
  for (const Signature& signature : kSignatures) {
    if (Matches(signature.mark, source.bytes)) return signature.read(source);
  }
  if (source.bytes.size() < 12) FailDamaged(source, "it is too short for a picture");
  throw StillError(StillErrorKind::CannotRead, source.path,
                   "it is no EXR, Radiance HDR, PNG or AVIF file",
                   "convert it to one of these formats");
}

/// Movie files begin like AVIF, with other brands.
bool IsMovie(std::span<const std::uint8_t> head) {
  if (!Matches(kSignatures.back().mark, head) || head.size() < 12) return false;
  const std::string_view brand(reinterpret_cast<const char*>(head.data()) + 8, 4);
  constexpr std::array<std::string_view, 4> kPictureBrands = {"avif", "avis", "mif1", "msf1"};
  return std::find(kPictureBrands.begin(), kPictureBrands.end(), brand) == kPictureBrands.end();
}

}  // namespace

bool IsStill(const std::filesystem::path& path) {
  const std::vector<std::uint8_t> head = LoadHead(path, 16);
  RefuseOtherFormats(path, head);
  return !IsMovie(head) && MatchesAnyStill(head);
}

Still ReadStill(const std::filesystem::path& path, std::int64_t maxPixels) {
  try {
    StillSource source = LoadStillSource(path);
    source.maxPixels = maxPixels;
    return ReadKnown(source);
  } catch (const std::bad_alloc&) {
    throw StillError(StillErrorKind::CannotRead, path, "there is not enough memory for it",
                     "scale it down");
  }
}
