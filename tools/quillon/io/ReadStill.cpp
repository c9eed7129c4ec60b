#include <algorithm>
#include <array>
#include <fstream>
#include <new>
#include <span>
#include <string_view>

#include "tools/quillon/io/Still.h"
#include "tools/quillon/io/StillError.h"
#include "tools/quillon/io/StillReaders.h"
#include "tools/quillon/io/StillSource.h"

namespace {

struct Signature {
  std::size_t offset;
  std::string_view bytes;
  Still (*read)(const StillSource&);
};

constexpr std::array<Signature, 4> kSignatures{{
    {0, {"\x76\x2f\x31\x01", 4}, ReadExr},
    {0, {"\x89PNG\r\n\x1a\n", 8}, ReadPng},
    {0, {"#?", 2}, ReadRadiance},
    {4, {"ftyp", 4}, ReadAvif},
}};

bool Matches(const Signature& signature, std::span<const std::uint8_t> bytes) {
  return bytes.size() >= signature.offset + signature.bytes.size() &&
         std::equal(signature.bytes.begin(), signature.bytes.end(),
                    bytes.begin() + static_cast<std::ptrdiff_t>(signature.offset),
                    [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

Still ReadKnown(const StillSource& source) {
  for (const Signature& signature : kSignatures) {
    if (Matches(signature, source.bytes)) return signature.read(source);
  }
  if (source.bytes.size() < 12) FailDamaged(source, "it is too short for a picture");
  FailNotSupported(source, "it is no EXR, Radiance HDR, PNG or AVIF file",
                   "convert it to one of these formats");
}

/// Movie files begin like AVIF, with other brands.
bool IsMovie(std::span<const std::uint8_t> head) {
  if (!Matches(kSignatures.back(), head) || head.size() < 12) return false;
  const std::string_view brand(reinterpret_cast<const char*>(head.data()) + 8, 4);
  constexpr std::array<std::string_view, 6> kPictureBrands = {"avif", "avis", "mif1",
                                                              "msf1", "heic", "heix"};
  return std::find(kPictureBrands.begin(), kPictureBrands.end(), brand) == kPictureBrands.end();
}

}  // namespace

bool IsStill(const std::filesystem::path& path) {
  std::array<std::uint8_t, 16> bytes{};
  std::ifstream file(path, std::ios::binary);
  file.read(reinterpret_cast<char*>(bytes.data()), bytes.size());
  const std::span<const std::uint8_t> head(bytes.data(), static_cast<std::size_t>(file.gcount()));
  return !IsMovie(head) &&
         std::any_of(kSignatures.begin(), kSignatures.end(),
                     [head](const Signature& signature) { return Matches(signature, head); });
}

Still ReadStill(const std::filesystem::path& path) {
  try {
    return ReadKnown(LoadStillSource(path));
  } catch (const std::bad_alloc&) {
    throw StillError(StillErrorKind::CannotRead, path, "there is not enough memory for it",
                     "scale it down");
  }
}
