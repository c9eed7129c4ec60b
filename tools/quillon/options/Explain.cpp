#include "tools/quillon/options/Explain.h"

#include <iomanip>
#include <string_view>

#include "tools/quillon/options/ColorSpaceNames.h"

namespace Quillon::Cli {

using Mapper::Algorithm;
using Mapper::Decisions;
using Mapper::GamutAlgorithm;
using Mapper::ToneMapDecision;

namespace {

std::ostream& Label(std::ostream& out, std::string_view label) {
  return out << std::left << std::setw(18) << label;
}

void ExplainPeak(std::ostream& out, std::string_view label, double nits, int white) {
  Label(out, label) << nits << " nits = " << nits / white << " in linear light";
}

void ExplainToneMap(std::ostream& out, const Decisions& decisions, const ToneMapDecision& toneMap) {
  Label(out, "tone mapping") << toneMap.name;
  if (toneMap.chosenAutomatically) out << " (chosen automatically)";
  out << '\n';
  if (toneMap.knee) {
    Label(out, "knee") << *toneMap.knee << " of the destination peak";
    if (toneMap.kneeNits) out << ", " << *toneMap.kneeNits << " nits";
    out << (toneMap.chosenAutomatically ? " (chosen automatically)\n" : "\n");
  }
  Label(out, "gain") << decisions.gain << '\n';
  Label(out, "preserve") << decisions.colorPreservation << '\n';
  Label(out, "peak, adjusted") << toneMap.adjustedPeak << '\n';
  int number = 0;
  for (const auto& parameter : toneMap.parameters) {
    Label(out, "parameter " + std::to_string(number++))
        << parameter.name << " = " << parameter.value << '\n';
  }
}

/// Curves that are the same whatever the source's peak, but for how they desaturate.
bool HasFixedCurve(Algorithm algorithm) {
  return algorithm == Algorithm::ITU2390MaxRGB || algorithm == Algorithm::ITU2390RGBByChannel ||
         algorithm == Algorithm::CARToneCurve;
}

}  // namespace

void Explain(std::ostream& out, const Decisions& decisions) {
  const int white = decisions.settings.white;
  Label(out, "input") << DescribeColorSpace(decisions.source) << '\n';
  Label(out, "mapped from") << DescribeColorSpace(decisions.mappedFrom) << '\n';
  Label(out, "destination") << DescribeColorSpace(decisions.destination) << '\n';
  Label(out, "device") << decisions.device << '\n';
  Label(out, "white") << white << " nits = 1 in linear light\n";
  ExplainPeak(out, "source peak", decisions.sourcePeak.nits, white);
  out << " (" << decisions.sourcePeak.origin << "), signal " << decisions.sourcePeakSignal << '\n';
  ExplainPeak(out, "destination peak", decisions.destinationPeakNits, white);
  out << '\n';
  Label(out, "gamut") << decisions.gamut << (decisions.gamutApplies ? "" : " (does not apply)")
                      << '\n';
  Label(out, "fit") << (decisions.settings.fit == Mapper::GamutFitting::Clip ? "clip"
                        : decisions.fitApplies                               ? "hue"
                                               : "hue (does not apply)")
                    << '\n';
  if (decisions.toneMap) {
    ExplainToneMap(out, decisions, *decisions.toneMap);
    return;
  }
  Label(out, "tone mapping")
      << (decisions.settings.algorithm == Algorithm::None
              ? "none"
              : "does not apply: the source peak, with its gain, is not above the destination's")
      << '\n';
}

void WarnOfLight(std::ostream& notes, const Mapper::Source& source, const Decisions& decisions) {
  for (const std::string& ignored : Mapper::BelieveLight(source).ignored) {
    notes << "warning: the source tells " << ignored
          << ", which cannot be and is ignored; it is mapped from a peak of "
          << decisions.sourcePeak.nits << " nits (" << decisions.sourcePeak.origin << ")\n";
  }
}

void NoteOptionsWithoutEffect(std::ostream& notes, const MappingOptions& options,
                              const Decisions& decisions) {
  const auto& settings = options.settings;
  if (!decisions.gamutApplies && settings.gamut != GamutAlgorithm::None) {
    notes << "note: the destination holds every colour of the source's gamut: --gamut has no "
             "effect\n";
  }
  if (!decisions.fitApplies && options.fit == Mapper::GamutFitting::Hue) {
    notes
        << "note: the destination holds every colour of the source's gamut: --fit has no effect\n";
  }
  if (decisions.curvePeakNits < decisions.sourcePeak.nits) {
    notes << "note: the source peak (" << decisions.sourcePeak.nits << " nits) is beyond "
          << decisions.curvePeakNits << " nits, where " << Mapper::AlgorithmName(settings.algorithm)
          << " ends: it is held there\n";
  }
  const bool peakGiven = options.peak.from != PeakSource::Default;
  if (peakGiven && decisions.toneMap && HasFixedCurve(settings.algorithm)) {
    notes << "note: the curve of " << Mapper::AlgorithmName(settings.algorithm)
          << " is the same from every peak: --peak changes only how highlights lose colour, and "
             "whether there is a tone map at all\n";
  }
  const bool asked =
      settings.algorithm != Algorithm::Automatic && settings.algorithm != Algorithm::None;
  const bool dials = settings.gain || settings.knee || settings.colorPreservation;
  if (decisions.toneMap || (!asked && !dials)) return;
  notes << "note: the source peak (" << decisions.sourcePeak.nits
        << " nits), with its gain, is not above the destination's ("
        << decisions.destinationPeakNits
        << " nits): nothing is tone mapped, and --algorithm, --gain, --knee and --preserve have no "
           "effect\n";
}

}  // namespace Quillon::Cli
