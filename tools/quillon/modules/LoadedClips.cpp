#include "tools/quillon/modules/Clips.h"
#include "tools/quillon/modules/LoadModule.h"

namespace Quillon::Cli {

namespace {

const ClipsModule& Clips() {
  static const auto& kModule = LoadModule<ClipsModule>("clips", "clips and image sequences");
  return kModule;
}

}  // namespace

void MapClip(const MapOptions& options, std::ostream& out, std::ostream& notes) {
  Clips().mapClip(options, out, notes);
}

void RequireClip(const std::filesystem::path& path, std::int64_t maxPixels) {
  Clips().requireClip(path, maxPixels);
}

std::unique_ptr<PictureSource> OpenClip(const std::filesystem::path& path, const FrameIndex* index,
                                        std::int64_t first, DamagePolicy policy,
                                        std::int64_t maxPixels) {
  return Clips().openClip(path, index, first, policy, maxPixels);
}

std::int64_t CountClipFrames(const std::filesystem::path& path, std::int64_t maxPixels) {
  return Clips().countClipFrames(path, maxPixels);
}

ChartClipLight WriteChartClip(const ChartClip& clip) { return Clips().writeChartClip(clip); }

}  // namespace Quillon::Cli
