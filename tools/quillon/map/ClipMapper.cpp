#include "tools/quillon/map/ClipMapper.h"

#include <algorithm>
#include <utility>

#include "mapper/Frames.h"
#include "mapper/Mapping.h"
#include "tools/quillon/picture/MapPicture.h"
#include "tools/quillon/picture/SceneLight.h"
#include "tools/quillon/plot/NitsAxis.h"
#include "tools/quillon/process/MapperErrors.h"

namespace Quillon::Cli {

using Mapper::Decisions;
using Mapper::Plan;
using orvmediatypes::color::ColorDescription;

namespace {

bool AreTaggedAlike(const ColorDescription& one, const ColorDescription& other) {
  return one.primaries == other.primaries && one.transfer == other.transfer &&
         one.matrix == other.matrix && one.fullRange == other.fullRange &&
         one.chromaLocation == other.chromaLocation && one.chromaticities == other.chromaticities;
}

std::optional<Exposure> ExposureFor(const MapOptions& options, const ClipTags& tags,
                                    const std::optional<ClipLevels>& levels) {
  return ResolveExposure(options.mapping, options.input,
                         TaggedColors(options.input, tags.colors, options.mapping.source),
                         [&levels] { return levels ? levels->LogAverage() : 0.0; });
}

Plan MakePlan(const MapOptions& options, const ClipTags& tags, double exposure,
              const std::optional<ClipLevels>& levels) {
  return PlanPictures(options.mapping, options.input, {tags.colors, tags.light}, exposure,
                      [&levels] { return levels ? levels->SteadyPeak() : 0.0; });
}

}  // namespace

ClipMapper::ClipMapper(const MapOptions& options, const ClipTags& tags,
                       std::optional<ClipLevels> levels)
    : options_(options),
      tags_(tags),
      levels_(std::move(levels)),
      exposure_(ExposureFor(options, tags, levels_)),
      plan_(MakePlan(options, tags, Factor(), levels_)),
      peakNits_(plan_.Decide().sourcePeak.nits) {
  if (options.mapping.peak.from == PeakSource::Scenes && levels_) {
    scenes_ = FindScenes(levels_->frames, kShortestScene);
    const ColorDescription& colors = Mapper::SourceColors(plan_);
    for (ClipScene& scene : scenes_) {
      scene.peak = HeldPeak(scene.peak, colors, options.mapping.settings.white) * Factor();
    }
  }
}

ContentLight ClipMapper::KnownLight() const {
  if (!levels_) return Mapper::BelieveLight({tags_.colors, tags_.light}).source.light;
  double peak = 0.0;
  for (const FrameLevels& frame : levels_->frames) peak = std::max(peak, frame.percentiles.back());
  return {static_cast<float>(peak * Factor()), static_cast<float>(levels_->MaxFall() * Factor())};
}

void ClipMapper::FollowTags(const ClipPicture& picture) {
  if (AreTaggedAlike(picture.tags.colors, tags_.colors)) return;
  tags_.colors = picture.tags.colors;
  plan_ = ValueOf(MakePlan(options_, tags_, Factor(), levels_).WithPeak(peakNits_));
}

void ClipMapper::FollowScenes(std::int64_t number) {
  for (const ClipScene& scene : scenes_) {
    if (number < scene.first || number >= scene.first + scene.count) continue;
    // A scene without any light is mapped like one that needs no mapping.
    const double peak = scene.peak > 0.0 ? scene.peak : 1.0;
    if (peak != peakNits_) plan_ = ValueOf(plan_.WithPeak(peak));
    peakNits_ = peak;
    return;
  }
}

void ClipMapper::Map(const ClipPicture& picture, PX::VideoFrameRef& destination) {
  FollowTags(picture);
  FollowScenes(picture.number);
  TagPicture(picture.frame, Mapper::SourceColors(plan_), picture.tags.whiteNits,
             options_.mapping.settings.white);
  const PX::VideoFrameRef source =
      ScaleLight(picture.frame, Factor(), options_.mapping.settings.white);
  MapInto(plan_, options_.input.string() + ", frame " + std::to_string(picture.number), source,
          destination);
}

std::optional<double> ClipMapper::PeakOf(std::int64_t number) const {
  const auto index = static_cast<std::size_t>(number);
  if (!levels_ || index >= levels_->frames.size()) return std::nullopt;
  return levels_->frames[index].peak;
}

std::string ClipMapper::PeakText() const {
  if (scenes_.empty()) return FormatNits(peakNits_) + " nits";
  const auto [least, most] =
      std::minmax_element(scenes_.begin(), scenes_.end(),
                          [](const ClipScene& a, const ClipScene& b) { return a.peak < b.peak; });
  if (least->peak == most->peak) return FormatNits(most->peak) + " nits";
  return FormatNits(least->peak) + " to " + FormatNits(most->peak) + " nits";
}

std::string ClipMapper::Doing() const {
  const Decisions decisions = plan_.Decide();
  if (!decisions.toneMap) return decisions.gamutApplies ? "gamut only" : "conversion only";
  return std::string(Mapper::AlgorithmName(decisions.toneMap->algorithm)) + " " +
         FormatNits(peakNits_) + " -> " + FormatNits(decisions.destinationPeakNits) + " nits";
}

}  // namespace Quillon::Cli
