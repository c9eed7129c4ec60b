#include "tools/quillon/map/MapOptions.h"

#include <string_view>
#include <vector>

#include "refhost/orvmediatypes/H273.h"
#include "tonemap/Algorithms.h"
#include "tools/quillon/process/ExitCodes.h"

using orvmediatypes::color::ToneMapAlgorithmType;

namespace {

void Refuse(bool condition, const std::string& sentence) {
  if (condition) throw CommandError(ExitCode::Usage, sentence);
}

/// "hue and car"
std::string AlgorithmsWithKnee() {
  std::vector<std::string_view> ids;
  for (const Quillon::ToneCurveFacts& curve : Quillon::kToneCurves) {
    if (HasKnee(curve.type)) ids.push_back(curve.id);
  }
  std::string list(ids.front());
  for (std::size_t i = 1; i < ids.size(); ++i) {
    list.append(i + 1 < ids.size() ? ", " : " and ").append(ids[i]);
  }
  return list;
}

void CheckToneMapOptions(const MapOptions& options) {
  const bool none = options.algorithm == ToneMapAlgorithmType::None;
  const char* const noEffect = " has no effect with --algorithm none; leave it out";
  Refuse(none && options.peakSource != PeakSource::Default, std::string("--peak") + noEffect);
  Refuse(none && options.gain.has_value(), std::string("--gain") + noEffect);
  Refuse(none && options.colorPreservation.has_value(), std::string("--preserve") + noEffect);

  Refuse(options.knee.has_value() && options.algorithm == ToneMapAlgorithmType::Automatic,
         "--knee has no effect with --algorithm auto, which chooses the knee itself; add "
         "--algorithm hue");
  Refuse(options.knee.has_value() && !HasKnee(options.algorithm),
         "--knee has no effect with this algorithm; it belongs to " + AlgorithmsWithKnee());
}

}  // namespace

bool HasKnee(ToneMapAlgorithmType algorithm) {
  const Quillon::ToneCurveFacts* curve = Quillon::FindToneCurve(algorithm);
  return curve != nullptr && curve->knee && curve->knee->isSetting;
}

void CheckMapOptions(const MapOptions& options) {
  CheckToneMapOptions(options);
  Refuse(options.quiet && options.explain,
         "--explain prints and --quiet prints nothing; give one of them");
  const bool hdr = options.destination.transfer == H273::kTransferPQ ||
                   options.destination.transfer == H273::kTransferHLG;
  Refuse(options.targetPeakNits.has_value() && !hdr,
         "--target-peak is for PQ and HLG destinations; an SDR destination's 1.0 is the white of "
         "--white (" +
             std::to_string(options.white) + " nits)");
}

void CheckClipOptions(const MapOptions& options) {
  Refuse(options.quiet && options.clip.dryRun,
         "--dry-run prints and --quiet prints nothing; give one of them");
  Refuse(options.quiet && options.clip.progress.has_value(),
         "--progress has no effect with --quiet; give one of them");
  Refuse(options.explain && options.clip.dryRun,
         "--explain has no effect with --dry-run, which explains everything; leave it out");
}

void CheckStillOptions(const MapOptions& options) {
  const std::string given = options.clip.FirstGiven();
  Refuse(!given.empty(), given + " is for clips; " + options.input.string() +
                             " is a still, on which it has no effect");
  Refuse(options.peakSource == PeakSource::Scenes,
         "--peak scenes is for clips; a still is measured with --peak measure");
}
