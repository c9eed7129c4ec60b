#include "tools/quillon/curve/CurveRun.h"

#include <algorithm>
#include <optional>
#include <sstream>

#include "mapper/Mapping.h"
#include "tools/quillon/curve/GreyRamp.h"
#include "tools/quillon/curve/HueStrip.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/options/Explain.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/picture/MapPicture.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

using Mapper::Algorithm;
using Mapper::Decisions;
using orvmediatypes::color::ColorSpace;

namespace {

constexpr const char* kRamp = "the ramp";  // what messages call it

/// The pictures to map: in linear light, or in the colour space of `--from`.
struct Pictures {
  PX::VideoFrameRef ramp;
  std::optional<PX::VideoFrameRef> hues;
};

PX::VideoFrameRef AsSource(const PX::VideoFrameRef& frame, const MappingOptions& options) {
  if (!options.source.colors.has_value()) return frame;
  return ConvertToFloat(frame, ColorSpace(*options.source.colors), options.settings.white);
}

Pictures RenderPictures(const CurveOptions& options, const std::vector<float>& nits) {
  Pictures pictures;
  const int white = options.mapping.settings.white;
  pictures.ramp = AsSource(RenderGreyRamp(nits, white), options.mapping);
  if (options.hue) pictures.hues = AsSource(RenderHues(nits, white), options.mapping);
  return pictures;
}

/// The curve's value between two samples of the ramp.
double Interpolate(const std::vector<float>& source, const std::vector<double>& result,
                   double nits) {
  const auto above = std::upper_bound(source.begin(), source.end(), nits);
  if (above == source.begin()) return result.front();
  if (above == source.end()) return result.back();
  const auto i = static_cast<std::size_t>(above - source.begin());
  const double share = (nits - source[i - 1]) / (double{source[i]} - source[i - 1]);
  return result[i - 1] + share * (result[i] - result[i - 1]);
}

void ReadToneMap(const Decisions& decisions, const std::vector<float>& nits,
                 AlgorithmCurve& curve) {
  if (!decisions.toneMap) return;
  const auto& toneMap = *decisions.toneMap;
  if (toneMap.chosenAutomatically) curve.resolved = Mapper::AlgorithmName(toneMap.algorithm);
  if (toneMap.kneeNits) {
    const double source = *toneMap.kneeNits / decisions.gain;
    curve.knee = CurveKnee{source, Interpolate(nits, curve.resultNits, source)};
  }
}

PX::VideoFrameRef MapOrSayWhatElse(const PlannedPicture& picture, const std::string& algorithm) {
  try {
    return MapPicture(picture, "the ramp by --algorithm " + algorithm);
  } catch (const CommandError& error) {
    throw CommandError(error.Code(), std::string(error.what()) +
                                         "; choose other peaks, or name each of the other "
                                         "algorithms with --algorithm");
  }
}

AlgorithmCurve RunCurve(const MappingOptions& options, const PlannedPicture& ramp,
                        const Decisions& decisions, const Pictures& pictures,
                        const std::vector<float>& nits) {
  constexpr int kGreen = 1;  // in grey the components are equal
  const int white = options.settings.white;
  AlgorithmCurve curve;
  curve.name = Mapper::AlgorithmName(options.settings.algorithm);
  curve.resultNits = ComponentNits(MapOrSayWhatElse(ramp, curve.name), kGreen, white);
  ReadToneMap(decisions, nits, curve);
  if (pictures.hues.has_value()) {
    const PlannedPicture hues = PlanPicture(options, kRamp, *pictures.hues);
    curve.hues =
        ReadMappedHues(MapOrSayWhatElse(hues, curve.name), decisions.destinationPeakNits, white);
  }
  std::ostringstream explanation;
  Explain(explanation, decisions);
  curve.explanation = explanation.str();
  return curve;
}

/// What all the plans agree on.
void Describe(const MappingOptions& options, const Decisions& decisions, CurveData& data) {
  data.whiteNits = options.settings.white;
  data.sourcePeakNits = decisions.sourcePeak.nits;
  data.targetPeakNits = decisions.destinationPeakNits;
  data.source = DescribeColorSpace(decisions.source);
  data.destination = DescribeColorSpace(options.target.colors);
  data.gain = decisions.gain;
  data.colorPreservation = decisions.colorPreservation;
}

}  // namespace

CurveData RunCurves(const CurveOptions& options, std::ostream& notes) {
  CurveData data;
  data.sourceNits = RampLuminances(
      {options.mapping.peak.nits, static_cast<double>(options.mapping.settings.white)});
  if (options.hue) data.hueNames = HueNames();
  const Pictures pictures = RenderPictures(options, data.sourceNits);
  // Held here so that all plans find it ready.
  const auto device = RequireDevice(options.mapping.device);

  bool asked = false;
  bool applies = false;
  for (const Algorithm algorithm : options.algorithms) {
    const MappingOptions mapping = MappingFor(options, algorithm);
    const PlannedPicture ramp = PlanPicture(mapping, kRamp, pictures.ramp);
    const Decisions decisions = ramp.plan.Decide();
    data.curves.push_back(RunCurve(mapping, ramp, decisions, pictures, data.sourceNits));
    Describe(mapping, decisions, data);
    asked = asked || algorithm != Algorithm::None;
    applies = applies || decisions.toneMap.has_value();
  }
  if (asked && !applies && !options.quiet) {
    notes << "note: the source peak (" << data.sourcePeakNits
          << " nits), with its gain, is not above the destination's (" << data.targetPeakNits
          << " nits): nothing is tone mapped, and all curves are the identity\n";
  }
  return data;
}

}  // namespace Quillon::Cli
