#include <algorithm>
#include <array>
#include <new>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/quillon/io/Still.h"
#include "tools/quillon/io/StillError.h"
#include "tools/quillon/io/StillFormats.h"
#include "tools/quillon/io/StillSource.h"

namespace Quillon::Cli {

namespace {

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

const StillFormat* FindFormat(std::span<const std::uint8_t> head) {
  for (const StillFormat& format : StillFormats()) {
    if (format.mark.IsIn(head)) return &format;
  }
  return nullptr;
}

/// Throws where the bytes begin as a picture of a format that is not read.
void RefuseOtherFormats(const std::filesystem::path& path, std::span<const std::uint8_t> head) {
  for (const auto& [mark, name] : kOtherFormats) {
    if (!mark.IsIn(head)) continue;
    throw StillError(StillErrorKind::CannotRead, path,
                     "it is a " + std::string(name) + " picture, which is not read",
                     "convert it to " + WrittenStillNames());
  }
}

Still ReadKnown(const StillSource& source) {
  RefuseOtherFormats(source.path, source.bytes);
  if (const StillFormat* format = FindFormat(source.bytes)) return format->read(source);
  if (source.bytes.size() < 12) FailDamaged(source, "it is too short for a picture");
  throw StillError(StillErrorKind::CannotRead, source.path,
                   "it is no " + ReadStillNames() + " file", "convert it to one of these formats");
}

/// Movie files are boxes like AVIF, of other brands.
bool IsMovie(std::span<const std::uint8_t> head) {
  constexpr Mark kBoxes{4, {"ftyp", 4}};
  constexpr std::array<Mark, 4> kPictures{
      {{8, {"avif", 4}}, {8, {"avis", 4}}, {8, {"mif1", 4}}, {8, {"msf1", 4}}}};
  return kBoxes.IsIn(head) && head.size() >= 12 &&
         std::none_of(kPictures.begin(), kPictures.end(),
                      [head](const Mark& brand) { return brand.IsIn(head); });
}

}  // namespace

bool IsStill(const std::filesystem::path& path) {
  const std::vector<std::uint8_t> head = LoadHead(path, 16);
  RefuseOtherFormats(path, head);
  return !IsMovie(head) && FindFormat(head) != nullptr;
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

}  // namespace Quillon::Cli
