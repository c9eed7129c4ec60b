#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "tools/quillon/io/WriteStill.h"

namespace Quillon::Cli {

/// One encoder a format: the bytes of the file. `path` is for messages. Each throws StillError.

/// PNG, R'G'B' without alpha. cICP always; sRGB beside it where the picture is sRGB.
std::vector<std::uint8_t> EncodePng(const StillOutput& output, const std::filesystem::path& path);

/// OpenEXR, R, G and B, scanlines, ZIP.
std::vector<std::uint8_t> EncodeExr(const StillOutput& output, const std::filesystem::path& path);

/// AVIF, full-range YCbCr 4:4:4 with an nclx colour box.
std::vector<std::uint8_t> EncodeAvif(const StillOutput& output, const std::filesystem::path& path);

}  // namespace Quillon::Cli
