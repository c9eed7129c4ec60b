#include "tools/quillon/map/ClipMapper.h"

#include <algorithm>
#include <utility>

#include "tools/quillon/ApplyPlan.h"
#include "tools/quillon/ResolvedToneMap.h"
#include "tools/quillon/options/AlgorithmNames.h"
#include "tools/quillon/plot/NitsAxis.h"

using orvmediatypes::color::ColorDescription;

namespace {

bool AreTaggedAlike(const ColorDescription& one, const ColorDescription& other) {
  return one.primaries == other.primaries && one.transfer == other.transfer &&
         one.matrix == other.matrix && one.fullRange == other.fullRange &&
         one.chromaLocation == other.chromaLocation && one.chromaticities == other.chromaticities;
}

MapPlan MakePlan(const MapOptions& options, const ClipTags& tags,
                 const std::optional<ClipLevels>& levels) {
  return PlanClip(options, tags.colors, tags.light,
                  [&levels] { return levels ? levels->SteadyPeak() : 0.0; });
}

}  // namespace

ClipMapper::ClipMapper(const MapOptions& options, const ClipTags& tags,
                       std::optional<ClipLevels> levels)
    : options_(options),
      tags_(tags),
      levels_(std::move(levels)),
      plan_(MakePlan(options, tags, levels_)) {
  if (options.peakSource == PeakSource::Scenes && levels_) {
    scenes_ = FindScenes(levels_->frames, kShortestScene);
    plan_.peakOrigin = "measured, scene by scene";
  }
}

ContentLight ClipMapper::KnownLight() const {
  if (!levels_) return tags_.light;
  return {static_cast<float>(levels_->SteadyPeak()), static_cast<float>(levels_->MaxFall())};
}

void ClipMapper::FollowTags(const ClipPicture& picture) {
  if (AreTaggedAlike(picture.tags.colors, tags_.colors)) return;
  const double peak = plan_.sourcePeakNits;
  tags_.colors = picture.tags.colors;
  plan_ = WithPeak(MakePlan(options_, tags_, levels_), peak);
}

void ClipMapper::FollowScenes(std::int64_t number) {
  for (const ClipScene& scene : scenes_) {
    if (number < scene.first || number >= scene.first + scene.count) continue;
    // A scene without any light is mapped like one that needs no mapping.
    const double peak = scene.peak > 0.0 ? scene.peak : 1.0;
    if (peak != plan_.sourcePeakNits) plan_ = WithPeak(plan_, peak);
    return;
  }
}

void ClipMapper::Map(const ClipPicture& picture, PX::VideoFrameRef& destination) {
  FollowTags(picture);
  FollowScenes(picture.number);
  ApplyPlanTo(plan_, options_.input.string() + ", frame " + std::to_string(picture.number),
              picture.frame, destination);
}

std::optional<double> ClipMapper::PeakOf(std::int64_t number) const {
  const auto index = static_cast<std::size_t>(number);
  if (!levels_ || index >= levels_->frames.size()) return std::nullopt;
  return levels_->frames[index].peak;
}

std::string ClipMapper::PeakText() const {
  if (scenes_.empty()) return FormatNits(plan_.sourcePeakNits) + " nits";
  const auto [least, most] =
      std::minmax_element(scenes_.begin(), scenes_.end(),
                          [](const ClipScene& a, const ClipScene& b) { return a.peak < b.peak; });
  if (least->peak == most->peak) return FormatNits(most->peak) + " nits";
  return FormatNits(least->peak) + " to " + FormatNits(most->peak) + " nits";
}

std::string ClipMapper::Doing() const {
  if (!plan_.toneMapApplies) return plan_.gamutApplies ? "gamut only" : "conversion only";
  return std::string(AlgorithmName(ResolveToneMap(plan_).settings.algorithmType)) + " " +
         FormatNits(plan_.sourcePeakNits) + " -> " + FormatNits(plan_.destinationPeakNits) +
         " nits";
}
