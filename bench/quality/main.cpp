// Picture quality of the mapping from HDR to SDR, by numbers: synthetic charts, mapped by the
// mapper library and by others, and measured in ITP.

#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

extern "C" {
#include <libavutil/log.h>
}

#include "bench/quality/Charts.h"
#include "bench/quality/Contestants.h"
#include "bench/quality/Figures.h"
#include "bench/quality/Report.h"

using namespace Quality;

namespace {

struct Options {
  std::string json;  ///< empty: none is written
};

std::optional<Options> ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  for (auto next = arguments.begin(); next != arguments.end(); ++next) {
    if (*next != "--json" || std::next(next) == arguments.end()) return std::nullopt;
    options.json = *++next;
  }
  return options;
}

std::vector<Contestant> AllContestants() {
  std::vector<Contestant> all = QuillonContestants();
  std::string remark;
  for (const auto& others : {FfmpegContestants(), PlaceboContestants(remark)}) {
    all.insert(all.end(), others.begin(), others.end());
  }
  if (!remark.empty()) std::printf("%s\n", remark.c_str());
  return all;
}

PeakReport Run(const std::vector<Contestant>& contestants, double peakNits) {
  const Charts charts = MakeCharts(peakNits);
  std::vector<Signal> pixels;
  pixels.reserve(charts.light.size());
  for (const Light& light : charts.light) pixels.push_back(EncodePQ(light));

  PeakReport report;
  report.peakNits = peakNits;
  for (const Contestant& contestant : contestants) {
    AddRow(report, contestant.name, contestant.settings,
           Measure(charts, contestant.map(pixels, peakNits)));
  }
  return report;
}

void WriteJson(const std::string& path, const nlohmann::ordered_json& json) {
  std::ofstream file(path);
  file << json.dump(2) << '\n';
  file.close();
  if (!file) throw std::runtime_error("cannot write " + path);
}

void RunAll(const Options& options) {
  const std::vector<Contestant> contestants = AllContestants();
  std::printf(
      "PQ to SDR BT.709, white at %.0f nits, the peak told. Hue error in degrees of ITP, mean and "
      "largest; lost: chroma, %%.\nRamps: pixels darker than one before, the worst in code values "
      "of 255; steps above 1.5 delta-E ITP; channels clipped, %%.\n",
      kWhiteNits);
  nlohmann::ordered_json peaks = nlohmann::ordered_json::array();
  for (const double peakNits : {600.0, 1000.0, 4000.0, 10000.0}) {
    const PeakReport report = Run(contestants, peakNits);
    std::printf("\n%s", FormatTable(report).c_str());
    std::fflush(stdout);
    peaks.push_back(ToJson(report));
  }
  if (!options.json.empty()) WriteJson(options.json, {{"whiteNits", kWhiteNits}, {"peaks", peaks}});
}

}  // namespace

int main(int argc, char** argv) {
  const auto options = ParseOptions({argv + 1, argv + argc});
  if (!options) {
    std::fprintf(stderr, "usage: quillon-quality-bench [--json FILE]\n");
    return 2;
  }
  av_log_set_level(AV_LOG_QUIET);
  try {
    RunAll(*options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
  return 0;
}
