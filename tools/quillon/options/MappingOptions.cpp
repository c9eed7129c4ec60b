#include "tools/quillon/options/MappingOptions.h"

#include <string_view>
#include <vector>

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/process/ExitCodes.h"
#include "tools/quillon/process/Words.h"

namespace Quillon::Cli {

using Mapper::Algorithm;

namespace {

std::string AlgorithmsWithKnee() {
  std::vector<std::string_view> names;
  for (const auto& algorithm : Mapper::Algorithms()) {
    if (Mapper::HasKnee(algorithm.value)) names.push_back(algorithm.name);
  }
  return JoinWords(names, " and ");
}

void CheckToneMap(const MappingOptions& options) {
  const auto& settings = options.settings;
  const bool none = settings.algorithm == Algorithm::None;
  const char* const noEffect = " has no effect with --algorithm none; leave it out";
  RefuseUsage(none && options.peak.from != PeakSource::Default, std::string("--peak") + noEffect);
  RefuseUsage(none && settings.gain.has_value(), std::string("--gain") + noEffect);
  RefuseUsage(none && settings.colorPreservation.has_value(), std::string("--preserve") + noEffect);

  RefuseUsage(settings.knee.has_value() && settings.algorithm == Algorithm::Automatic,
              "--knee has no effect with --algorithm auto, which chooses the knee itself; add "
              "--algorithm hue");
  RefuseUsage(settings.knee.has_value() && !Mapper::HasKnee(settings.algorithm),
              "--knee has no effect with this algorithm; it belongs to " + AlgorithmsWithKnee());
}

}  // namespace

void CheckMappingOptions(const MappingOptions& options) {
  CheckToneMap(options);
  const int transfer = options.target.colors.transfer;
  const bool hdr = transfer == RefHost::kTransferPQ || transfer == RefHost::kTransferHLG;
  RefuseUsage(options.target.peakNits.has_value() && !hdr,
              "--target-peak is for PQ and HLG destinations; an SDR destination's 1.0 is the white "
              "of --white (" +
                  std::to_string(options.settings.white) + " nits)");
}

void SettleFit(MappingOptions& options, bool intoFloats) {
  using Mapper::GamutFitting;
  options.settings.fit = options.fit.value_or(intoFloats ? GamutFitting::Clip : GamutFitting::Hue);
}

void CheckExplainIsSeen(bool explain, bool quiet) {
  RefuseUsage(quiet && explain, "--explain prints and --quiet prints nothing; give one of them");
}

}  // namespace Quillon::Cli
