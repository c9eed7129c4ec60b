#include "tools/quillon/curve/CurveRun.h"

#include <algorithm>
#include <optional>
#include <sstream>

#include "tools/quillon/ApplyPlan.h"
#include "tools/quillon/ColorSpaceNames.h"
#include "tools/quillon/MapPlan.h"
#include "tools/quillon/ResolvedToneMap.h"
#include "tools/quillon/curve/GreyRamp.h"
#include "tools/quillon/curve/HueStrip.h"
#include "tools/quillon/map/Explain.h"
#include "tools/quillon/options/AlgorithmNames.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/process/ExitCodes.h"

using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::ToneMapAlgorithmType;

namespace {

/// The pictures to map: in linear light, or in the colour space of `--from`.
struct Pictures {
  Still ramp;
  std::optional<Still> hues;
};

Still AsSource(const PX::VideoFrameRef& frame, const MapOptions& options) {
  Still still;
  still.frame = frame;
  if (options.source.has_value()) {
    still.frame = ConvertToFloat(frame, ColorSpace(*options.source), options.white);
  }
  return still;
}

Pictures RenderPictures(const CurveOptions& options, const std::vector<float>& nits) {
  Pictures pictures;
  pictures.ramp = AsSource(RenderGreyRamp(nits, options.map.white), options.map);
  if (options.hue) pictures.hues = AsSource(RenderHues(nits, options.map.white), options.map);
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

void ReadToneMap(const MapPlan& plan, const std::vector<float>& nits, AlgorithmCurve& curve) {
  if (!plan.toneMapApplies) return;
  const ResolvedToneMap toneMap = ResolveToneMap(plan);
  if (toneMap.settings.algorithmType != plan.settings.toneMapSettings.algorithmType) {
    curve.resolved = AlgorithmName(toneMap.settings.algorithmType);
  }
  if (const auto knee = KneeNits(toneMap, plan.white)) {
    const double source = *knee / toneMap.settings.controls.peakGain;
    curve.knee = CurveKnee{source, Interpolate(nits, curve.resultNits, source)};
  }
}

PX::VideoFrameRef ApplyOrSayWhatElse(const MapPlan& plan, const std::string& algorithm) {
  try {
    return ApplyPlan(plan, "the ramp by --algorithm " + algorithm);
  } catch (const CommandError& error) {
    throw CommandError(error.Code(), std::string(error.what()) +
                                         "; choose other peaks, or name each of the other "
                                         "algorithms with --algorithm");
  }
}

AlgorithmCurve RunCurve(const MapOptions& options, const MapPlan& plan, const Pictures& pictures,
                        const std::vector<float>& nits) {
  constexpr int kGreen = 1;  // in grey the components are equal
  AlgorithmCurve curve;
  curve.name = AlgorithmName(options.algorithm);
  curve.resultNits = ComponentNits(ApplyOrSayWhatElse(plan, curve.name), kGreen, options.white);
  ReadToneMap(plan, nits, curve);
  if (pictures.hues.has_value()) {
    curve.hues = ReadMappedHues(ApplyOrSayWhatElse(PlanMap(options, *pictures.hues), curve.name),
                                plan.destinationPeakNits, options.white);
  }
  std::ostringstream explanation;
  ExplainPlan(explanation, plan);
  curve.explanation = explanation.str();
  return curve;
}

/// What all the plans agree on.
void Describe(const MapOptions& options, const MapPlan& plan, CurveData& data) {
  const auto& settings = plan.settings.toneMapSettings;
  data.whiteNits = plan.white;
  data.sourcePeakNits = plan.sourcePeakNits;
  data.targetPeakNits = plan.destinationPeakNits;
  data.source = DescribeColorSpace(plan.taggedSource);
  data.destination = DescribeColorSpace(options.destination);
  data.gain = settings.controls.peakGain;
  data.colorPreservation = settings.controls.colorPreservation;
}

}  // namespace

CurveData RunCurves(const CurveOptions& options, std::ostream& notes) {
  CurveData data;
  data.sourceNits = RampLuminances({options.map.peakNits, static_cast<double>(options.map.white)});
  if (options.hue) data.hueNames = HueNames();
  const Pictures pictures = RenderPictures(options, data.sourceNits);
  // Held here so that all plans find it ready.
  const auto device = OpenChosenDevice(options.map.device);

  bool asked = false;
  bool applies = false;
  for (const ToneMapAlgorithmType algorithm : options.algorithms) {
    const MapOptions map = MapOptionsFor(options, algorithm);
    const MapPlan plan = PlanMap(map, pictures.ramp);
    data.curves.push_back(RunCurve(map, plan, pictures, data.sourceNits));
    Describe(map, plan, data);
    asked = asked || algorithm != ToneMapAlgorithmType::None;
    applies = applies || plan.toneMapApplies;
  }
  if (asked && !applies && !options.map.quiet) {
    notes << "note: the source peak (" << data.sourcePeakNits
          << " nits), with its gain, is not above the destination's (" << data.targetPeakNits
          << " nits): nothing is tone mapped, and all curves are the identity\n";
  }
  return data;
}
