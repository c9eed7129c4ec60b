#include <nlohmann/json.hpp>

#include "tools/quillon/inspect/InspectReport.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/options/Json.h"

namespace Quillon::Cli {

using nlohmann::ordered_json;
using orvmediatypes::color::Chromaticity;

namespace {

ordered_json PointJson(const Chromaticity& at) { return {at.x, at.y}; }

ordered_json TagsJson(const ClipTags& tags) {
  const auto& colors = tags.colors;
  ordered_json json = {{"color_space", ColorSpaceJson(colors)},
                       {"full_range", colors.fullRange},
                       {"chroma_location", colors.chromaLocation}};
  if (colors.masteringMaxLuminance > 0.0F) {
    const auto& display = colors.masteringChromaticities;
    json["mastering_display"] = {{"max_nits", colors.masteringMaxLuminance},
                                 {"min_nits", colors.masteringMinLuminance},
                                 {"red", PointJson(display.red)},
                                 {"green", PointJson(display.green)},
                                 {"blue", PointJson(display.blue)},
                                 {"white", PointJson(display.white)}};
  }
  if (tags.light.maxCLL > 0.0F) {
    json["max_cll_nits"] = tags.light.maxCLL;
    json["max_fall_nits"] = tags.light.maxFALL;
  }
  return json;
}

ordered_json FrameJson(const FrameLevels& frame) {
  return {{"peak_nits", frame.peak},
          {"average_nits", frame.average},
          {"percentile_50_nits", frame.percentiles[0]},
          {"percentile_90_nits", frame.percentiles[1]},
          {"percentile_99_nits", frame.percentiles[2]},
          {"percentile_99_99_nits", frame.percentiles[3]},
          {"change_stops", frame.change}};
}

ordered_json LevelsJson(const ClipLevels& levels, const std::vector<ClipScene>& found) {
  ordered_json scenes = ordered_json::array();
  for (const ClipScene& scene : found) {
    scenes.push_back(
        {{"first_frame", scene.first}, {"frames", scene.count}, {"steady_peak_nits", scene.peak}});
  }
  ordered_json frames = ordered_json::array();
  for (const FrameLevels& frame : levels.frames) frames.push_back(FrameJson(frame));
  return {{"white_nits", levels.white},
          {"max_cll_nits", levels.MaxCll()},
          {"max_fall_nits", levels.MaxFall()},
          {"steady_peak_nits", levels.SteadyPeak()},
          {"scenes", scenes},
          {"frames", frames}};
}

}  // namespace

std::string InspectionJson(const Inspection& inspection) {
  const ClipInfo& info = inspection.info;
  ordered_json json = {{"file", inspection.path.string()},
                       {"container", info.container},
                       {"codec", info.codec},
                       {"pixel_format", info.pixelFormat},
                       {"width", info.width},
                       {"height", info.height},
                       {"frames_per_second", av_q2d(info.frameRate)},
                       {"seconds", info.seconds},
                       {"frames", info.frames},
                       {"rotation_degrees", info.rotation},
                       {"other_streams", info.audio},
                       {"dynamic_metadata", info.dynamicMetadata},
                       {"tags", TagsJson(info.tags)}};
  if (inspection.peak) {
    json["peak"] = {{"nits", inspection.peak->nits}, {"origin", inspection.peak->origin}};
  }
  if (inspection.levels) json["measured"] = LevelsJson(*inspection.levels, inspection.scenes);
  json["warnings"] = inspection.warnings;
  return FormatJson(json);
}

}  // namespace Quillon::Cli
