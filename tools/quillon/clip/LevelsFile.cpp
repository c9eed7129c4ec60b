#include "tools/quillon/clip/LevelsFile.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tools/quillon/clip/FileIdentity.h"
#include "tools/quillon/io/NameBeside.h"
#include "tools/quillon/io/TargetFile.h"

namespace Quillon::Cli {

using nlohmann::json;

namespace {

constexpr int kVersion = 2;

json ToJson(const FrameLevels& levels) {
  return {levels.peak,           levels.average,        levels.percentiles[0],
          levels.percentiles[1], levels.percentiles[2], levels.percentiles[3],
          levels.steadyPeak,     levels.logAverage,     levels.change};
}

FrameLevels FromJson(const json& row) {
  FrameLevels levels;
  levels.peak = row.at(0);
  levels.average = row.at(1);
  for (std::size_t i = 0; i < levels.percentiles.size(); ++i) levels.percentiles[i] = row.at(i + 2);
  levels.steadyPeak = row.at(6);
  levels.logAverage = row.at(7);
  levels.change = row.at(8);
  return levels;
}

}  // namespace

double ClipLevels::SteadyPeak() const {
  double peak = 0.0;
  for (const FrameLevels& frame : frames) peak = std::max(peak, frame.steadyPeak);
  return peak;
}

double ClipLevels::MaxCll() const {
  double peak = 0.0;
  for (const FrameLevels& frame : frames) peak = std::max(peak, frame.peak);
  return peak;
}

double ClipLevels::LogAverage() const {
  double sum = 0.0;
  int count = 0;
  for (const FrameLevels& frame : frames) {
    if (frame.logAverage <= 0.0) continue;
    sum += std::log2(frame.logAverage);
    ++count;
  }
  return count == 0 ? 0.0 : std::exp2(sum / count);
}

double ClipLevels::MaxFall() const {
  double average = 0.0;
  for (const FrameLevels& frame : frames) average = std::max(average, frame.average);
  return average;
}

std::filesystem::path LevelsFileOf(const std::filesystem::path& clip) {
  return NameBeside(clip, clip.filename().string(), ".levels.json");
}

std::optional<ClipLevels> LoadLevels(const std::filesystem::path& clip,
                                     const std::string& colorSpace, int white, double percent) {
  std::ifstream file(LevelsFileOf(clip), std::ios::binary);
  const json kept = json::parse(file, nullptr, false);
  try {
    if (kept.is_discarded() || kept.at("version") != kVersion ||
        kept.at("clip") != FileIdentity(clip) || kept.at("color_space") != colorSpace ||
        kept.at("white_nits") != white || kept.at("steady_percent") != percent) {
      return std::nullopt;
    }
    ClipLevels levels{colorSpace, white, percent, {}};
    for (const json& row : kept.at("frames")) levels.frames.push_back(FromJson(row));
    return levels;
  } catch (const json::exception&) {
    return std::nullopt;  // not ours, or damaged: measured again
  }
}

void SaveLevels(const std::filesystem::path& clip, const ClipLevels& levels) {
  json rows = json::array();
  for (const FrameLevels& frame : levels.frames) rows.push_back(ToJson(frame));
  const json kept = {{"version", kVersion},
                     {"clip", FileIdentity(clip)},
                     {"color_space", levels.colorSpace},
                     {"white_nits", levels.white},
                     {"steady_percent", levels.percent},
                     {"columns",
                      {"peak_nits", "average_nits", "percentile_50_nits", "percentile_90_nits",
                       "percentile_99_nits", "percentile_99_99_nits", "steady_peak_nits",
                       "log_average_nits", "change_stops"}},
                     {"max_cll_nits", levels.MaxCll()},
                     {"max_fall_nits", levels.MaxFall()},
                     {"frames", rows}};
  const std::string text = kept.dump(1) + "\n";
  WriteTargetFile(LevelsFileOf(clip),
                  std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()), true);
}

}  // namespace Quillon::Cli
