#include "tools/quillon/io/WriteStill.h"

#include <algorithm>
#include <array>
#include <new>
#include <string>
#include <string_view>

#include "tools/quillon/io/StillEncoders.h"
#include "tools/quillon/io/StillError.h"
#include "tools/quillon/io/TargetFile.h"

namespace {

using Encoder = std::vector<std::uint8_t> (*)(const StillOutput&, const std::filesystem::path&);

struct Format {
  std::string_view extension;
  Encoder encode;
};

constexpr std::array<Format, 3> kFormats{
    {{".png", EncodePng}, {".exr", EncodeExr}, {".avif", EncodeAvif}}};

const Format* FindFormat(const std::string& extension) {
  const auto* found =
      std::find_if(kFormats.begin(), kFormats.end(),
                   [&extension](const Format& format) { return format.extension == extension; });
  return found == kFormats.end() ? nullptr : found;
}

const Format& FormatOf(const std::filesystem::path& path) {
  const std::string extension = LowerCaseExtension(path);
  if (const Format* format = FindFormat(extension)) return *format;
  throw StillError(StillErrorKind::NotSupported, path,
                   "the extension \"" + extension + "\" names no format that is written",
                   "choose .png, .exr or .avif");
}

}  // namespace

bool NamesStill(const std::filesystem::path& path) {
  return FindFormat(LowerCaseExtension(path)) != nullptr;
}

void CheckStillTarget(const std::filesystem::path& path, bool overwrite) {
  FormatOf(path);
  CheckTargetFile(path, overwrite);
}

void WriteStill(const StillOutput& output, const std::filesystem::path& path) {
  CheckStillTarget(path, output.overwrite);
  try {
    WriteTargetFile(path, FormatOf(path).encode(output, path), output.overwrite);
  } catch (const std::bad_alloc&) {
    throw StillError(StillErrorKind::CannotWrite, path, "there is not enough memory to encode it",
                     "write a smaller picture");
  }
}
