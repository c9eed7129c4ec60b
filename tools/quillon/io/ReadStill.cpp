#include <algorithm>
#include <array>
#include <new>
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

bool Matches(const Signature& signature, const StillSource& source) {
  const auto& bytes = source.bytes;
  return bytes.size() >= signature.offset + signature.bytes.size() &&
         std::equal(signature.bytes.begin(), signature.bytes.end(),
                    bytes.begin() + static_cast<std::ptrdiff_t>(signature.offset),
                    [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

Still ReadKnown(const StillSource& source) {
  for (const Signature& signature : kSignatures) {
    if (Matches(signature, source)) return signature.read(source);
  }
  if (source.bytes.size() < 12) FailDamaged(source, "it is too short for a picture");
  FailNotSupported(source, "it is no EXR, Radiance HDR, PNG or AVIF file",
                   "convert it to one of these formats");
}

}  // namespace

Still ReadStill(const std::filesystem::path& path) {
  try {
    return ReadKnown(LoadStillSource(path));
  } catch (const std::bad_alloc&) {
    throw StillError(StillErrorKind::CannotRead, path, "there is not enough memory for it",
                     "scale it down");
  }
}
