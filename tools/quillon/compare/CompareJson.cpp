#include "tools/quillon/compare/CompareJson.h"

namespace Quillon::Cli {

using nlohmann::ordered_json;

namespace {

void AddCount(ordered_json& json, const std::string& name, const PixelMarks& marks,
              PixelMark mark) {
  const auto count = marks.Count(mark);
  json[name + "_pixels"] = count;
  json[name + "_share"] = static_cast<double>(count) / static_cast<double>(marks.marks.size());
}

ordered_json MarksJson(const PixelMarks& marks) {
  ordered_json json;
  if (marks.hasFullScale) {
    AddCount(json, "clipped", marks, kClipped);
  } else {
    json["clipped_pixels"] = nullptr;
    json["clipped_share"] = nullptr;
  }
  AddCount(json, "out_of_gamut", marks, kOutOfGamut);
  AddCount(json, "not_finite", marks, kNotFinite);
  return json;
}

ordered_json DeltaEJson(const std::optional<DeltaEFigures>& figures) {
  if (!figures.has_value()) return nullptr;
  return {{"mean", figures->mean},
          {"median", figures->median},
          {"percentile_95", figures->percentile95},
          {"percentile_99", figures->percentile99},
          {"max", figures->max},
          {"max_at", {{"x", figures->maxX}, {"y", figures->maxY}}}};
}

ordered_json ErrorJson(const std::optional<SignalError>& error) {
  if (!error.has_value()) return nullptr;
  ordered_json json = {{"db", nullptr}, {"mean_squared_error", error->meanSquared}};
  if (const auto psnr = error->PsnrDb()) json["db"] = *psnr;
  return json;
}

}  // namespace

ordered_json CompareFiguresJson(const Comparison& comparison, const CompareSettings& settings) {
  return {{"width", comparison.width},
          {"height", comparison.height},
          {"pixels", comparison.Pixels()},
          {"compared_pixels", comparison.comparedPixels},
          {"white_nits", settings.white},
          {"gamut", ComparedGamutName(settings.gamutPrimaries)},
          {"delta_e_itp", DeltaEJson(comparison.deltaEFigures)},
          {"psnr_pq_bt2020", ErrorJson(comparison.pqError)},
          {"psnr_own_signal", ErrorJson(comparison.ownError)},
          {"a", MarksJson(comparison.marksA)},
          {"b", MarksJson(comparison.marksB)}};
}

}  // namespace Quillon::Cli
