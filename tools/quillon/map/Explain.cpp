#include "tools/quillon/map/Explain.h"

#include <iomanip>
#include <string>
#include <string_view>

#include "tonemap/Algorithms.h"
#include "tools/quillon/ColorSpaceNames.h"
#include "tools/quillon/DeviceChoice.h"
#include "tools/quillon/ResolvedToneMap.h"

using orvmediatypes::color::GamutCompressionAlgorithmType;
using orvmediatypes::color::ToneMapAlgorithmType;
using PX::ToneMappingUtils::ToneMapSettings;

namespace {

std::string NameWithUnit(const Quillon::ParamEntry& entry) {
  std::string name(entry.name);
  if (entry.unit == Quillon::Unit::PqCode) name += " (PQ)";
  if (entry.unit == Quillon::Unit::Nits) name += " (nits)";
  return name;
}

std::ostream& Label(std::ostream& out, std::string_view label) {
  return out << std::left << std::setw(18) << label;
}

void ExplainPeak(std::ostream& out, std::string_view label, double nits, int white) {
  Label(out, label) << nits << " nits = " << nits / white << " in linear light";
}

void ExplainToneMap(std::ostream& out, const MapPlan& plan) {
  const ToneMapSettings& asked = plan.settings.toneMapSettings;
  if (!plan.toneMapApplies) {
    Label(out, "tone mapping")
        << (asked.algorithmType == ToneMapAlgorithmType::None
                ? "none"
                : "does not apply: the source peak, with its gain, is not above the "
                  "destination's")
        << '\n';
    return;
  }
  const auto [resolved, params] = ResolveToneMap(plan);

  Label(out, "tone mapping") << PX::ToneMappingUtils::GetLocalizedToneMappingMethodName(
      resolved.algorithmType, 1);
  if (resolved.algorithmType != asked.algorithmType) out << " (chosen automatically)";
  out << '\n';
  if (HasKnee(resolved.algorithmType)) {
    Label(out, "knee") << resolved.knee << " of the destination peak\n";
  }
  Label(out, "gain") << resolved.controls.peakGain << '\n';
  Label(out, "preserve") << resolved.controls.colorPreservation << '\n';
  Label(out, "peak, adjusted") << resolved.controls.peak << '\n';

  const auto* curve = Quillon::FindToneCurve(Quillon::AlgorithmOfParams(asked.algorithmType));
  for (std::size_t i = 0; i < params.size(); ++i) {
    Label(out, "parameter " + std::to_string(i))
        << NameWithUnit(curve->entries[i]) << " = " << params[i] << '\n';
  }
}

}  // namespace

void ExplainPlan(std::ostream& out, const MapPlan& plan) {
  const ToneMapSettings& settings = plan.settings.toneMapSettings;
  const auto source = settings.sourceColorSpace.Description();
  Label(out, "input") << DescribeColorSpace(plan.taggedSource) << '\n';
  Label(out, "mapped from") << DescribeColorSpace(source) << '\n';
  Label(out, "destination") << DescribeColorSpace(settings.destinationColorSpace.Description())
                            << '\n';
  Label(out, "device") << (plan.device == nullptr ? "cpu" : DeviceName(plan.device->Info()))
                       << '\n';
  Label(out, "white") << plan.white << " nits = 1 in linear light\n";
  ExplainPeak(out, "source peak", plan.sourcePeakNits, plan.white);
  out << " (" << plan.peakOrigin << "), signal " << settings.controls.peak << '\n';
  ExplainPeak(out, "destination peak", plan.destinationPeakNits, plan.white);
  out << '\n';
  Label(out, "gamut") << PX::GamutMappingUtils::GetGamutCompressionMethodName(
                             plan.settings.algorithmType, 1)
                      << (plan.gamutApplies ? "" : " (does not apply)") << '\n';
  ExplainToneMap(out, plan);
}

void NoteOptionsWithoutEffect(std::ostream& notes, const MapOptions& options, const MapPlan& plan) {
  if (!plan.gamutApplies && options.gamut != GamutCompressionAlgorithmType::None) {
    notes << "note: the destination holds every colour of the source's gamut: --gamut has no "
             "effect\n";
  }
  const bool asked = options.algorithm != ToneMapAlgorithmType::Automatic &&
                     options.algorithm != ToneMapAlgorithmType::None;
  const bool dials = options.gain || options.knee || options.colorPreservation;
  if (plan.toneMapApplies || (!asked && !dials)) return;
  notes << "note: the source peak (" << plan.sourcePeakNits
        << " nits), with its gain, is not above the destination's (" << plan.destinationPeakNits
        << " nits): nothing is tone mapped, and --algorithm, --gain, --knee and --preserve have no "
           "effect\n";
}
