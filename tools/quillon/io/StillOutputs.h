#pragma once

#include <filesystem>
#include <span>

#include "tools/quillon/io/WriteStill.h"

namespace Quillon::Cli {

/// What the encoders share. Each throws StillError (NotSupported).

/// The depth to write: the one asked for where it is among `allowed`, else `byDefault`.
int ChooseDepth(const StillOutput& output, const std::filesystem::path& path, const char* format,
                std::span<const int> allowed, int byDefault);

/// The picture as a new frame of another format and colour space.
PX::VideoFrameRef ConvertForFile(const StillOutput& output, const std::filesystem::path& path,
                                 orvmediatypes::PixelFormat format,
                                 const orvmediatypes::color::ColorSpace& colorSpace);

/// The picture's colours as H.273 code points.
orvmediatypes::color::ColorDescription RequireCodePoints(const StillOutput& output,
                                                         const std::filesystem::path& path);

/// PQ or HLG.
bool IsHdrTransfer(int transfer);

}  // namespace Quillon::Cli
