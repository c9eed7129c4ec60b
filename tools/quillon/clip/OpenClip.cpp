#include "tools/quillon/clip/OpenClip.h"

#include "tools/quillon/clip/ClipSource.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

void RequireClip(const std::filesystem::path& path, std::int64_t maxPixels) {
  const ClipInput clip = OpenClipInput(path, maxPixels);
  if (clip.video->codecpar->width > 0) return;
  // FFmpeg goes by the name where the content tells it nothing.
  throw CommandError(ExitCode::CannotRead, path.string() +
                                               ": it is no picture and no clip that can be read; "
                                               "check that it is whole");
}

std::unique_ptr<PictureSource> OpenClip(const std::filesystem::path& path, const FrameIndex* index,
                                        std::int64_t first, DamagePolicy policy,
                                        std::int64_t maxPixels) {
  return std::make_unique<ClipSource>(path, index, first, policy, maxPixels);
}

std::int64_t CountClipFrames(const std::filesystem::path& path, std::int64_t maxPixels) {
  const FrameIndex index = FrameIndex::Scan(path, maxPixels);
  RequireWhole(path, index.Damage());
  return index.Count();
}

}  // namespace Quillon::Cli
