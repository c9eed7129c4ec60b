#include "tools/quillon/clip/OpenClip.h"

#include "tools/quillon/clip/ClipSource.h"

std::unique_ptr<PictureSource> OpenClip(const std::filesystem::path& path, const FrameIndex* index,
                                        std::int64_t first, DamagePolicy policy) {
  return std::make_unique<ClipSource>(path, index, first, policy);
}

std::int64_t CountClipFrames(const std::filesystem::path& path) {
  return FrameIndex::Scan(path).Count();
}
