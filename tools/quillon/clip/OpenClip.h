#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

#include "tools/quillon/clip/PictureSource.h"

namespace Quillon::Cli {

/// Throws CommandError unless the file is a clip as far as its head tells.
void RequireClip(const std::filesystem::path& path, std::int64_t maxPixels);

/// The pictures of a clip; see `OpenPictures`. Throws CommandError.
std::unique_ptr<PictureSource> OpenClip(const std::filesystem::path& path, const FrameIndex* index,
                                        std::int64_t first, DamagePolicy policy,
                                        std::int64_t maxPixels);

/// How many frames a clip has, counted one by one. Throws CommandError.
std::int64_t CountClipFrames(const std::filesystem::path& path, std::int64_t maxPixels);

}  // namespace Quillon::Cli
