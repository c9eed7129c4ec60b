#include "tools/quillon/io/StillFormats.h"

#include <algorithm>
#include <array>

#include "tools/quillon/io/StillEncoders.h"
#include "tools/quillon/io/StillReaders.h"
#include "tools/quillon/io/TargetFile.h"
#include "tools/quillon/process/Words.h"

namespace Quillon::Cli {

namespace {

constexpr std::array<StillFormat, 4> kFormats{{
    {"EXR", {0, {"\x76\x2f\x31\x01", 4}}, ReadExr, ".exr", EncodeExr, true},
    {"Radiance HDR", {0, {"#?", 2}}, ReadRadiance, "", nullptr},
    {"PNG", {0, {"\x89PNG\r\n\x1a\n", 8}}, ReadPng, ".png", EncodePng},
    {"AVIF", {4, {"ftyp", 4}}, ReadAvif, ".avif", EncodeAvif},
}};

/// "A, B or C" of what the formats that are taken have.
template <class Take>
std::string ListOf(std::string_view StillFormat::*text, Take take) {
  std::vector<std::string_view> texts;
  for (const StillFormat& format : kFormats) {
    if (take(format)) texts.push_back(format.*text);
  }
  return JoinWords(texts, " or ");
}

bool IsWritten(const StillFormat& format) { return format.encode != nullptr; }

}  // namespace

bool HoldsAnyColor(const std::filesystem::path& name) {
  const std::string extension = LowerCaseExtension(name);
  return std::any_of(kFormats.begin(), kFormats.end(), [&](const StillFormat& format) {
    return format.holdsAnyColor && format.extension == extension;
  });
}

bool Mark::IsIn(std::span<const std::uint8_t> file) const {
  return file.size() >= offset + bytes.size() &&
         std::equal(bytes.begin(), bytes.end(), file.begin() + static_cast<std::ptrdiff_t>(offset),
                    [](char a, std::uint8_t b) { return static_cast<std::uint8_t>(a) == b; });
}

std::span<const StillFormat> StillFormats() { return kFormats; }

std::string ReadStillNames() {
  return ListOf(&StillFormat::name, [](const StillFormat&) { return true; });
}

std::string WrittenStillNames() { return ListOf(&StillFormat::name, IsWritten); }

std::string WrittenStillExtensions() { return ListOf(&StillFormat::extension, IsWritten); }

}  // namespace Quillon::Cli
