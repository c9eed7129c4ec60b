#include "tools/quillon/map/MapStill.h"

#include <cmath>
#include <iomanip>
#include <optional>
#include <string>

#include "tools/quillon/io/WriteStill.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/options/Explain.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/picture/LightLevels.h"
#include "tools/quillon/picture/MapPicture.h"
#include "tools/quillon/picture/SceneLight.h"

namespace Quillon::Cli {

using Mapper::Decisions;

namespace {

void Summarise(std::ostream& out, const MapOptions& options, const Decisions& decisions,
               const std::optional<Exposure>& exposure) {
  out << options.input.string() << " -> " << options.output.string() << ": "
      << DescribeColorSpace(decisions.source);
  if (exposure) out << ", exposure " << exposure->Describe(decisions.settings.white);
  out << ", peak " << decisions.sourcePeak.nits << " nits (" << decisions.sourcePeak.origin
      << ") to " << DescribeColorSpace(options.mapping.target.colors) << ", peak "
      << decisions.destinationPeakNits << " nits\n";
}

void ExplainExposure(std::ostream& out, const std::optional<Exposure>& exposure, int white) {
  if (exposure)
    out << std::left << std::setw(18) << "exposure" << exposure->Describe(white) << '\n';
}

/// BT.2390 on the processor takes light in steps of one nit.
void NoteSteps(std::ostream& notes, const PlannedPicture& planned, const Decisions& decisions) {
  constexpr double kWorthANote = 0.05;
  const bool isBt2390 =
      decisions.toneMap && (decisions.toneMap->algorithm == Mapper::Algorithm::ITU2390MaxRGB ||
                            decisions.toneMap->algorithm == Mapper::Algorithm::ITU2390RGBByChannel);
  if (!isBt2390 || decisions.device != "cpu") return;
  const double share = DimShare(planned.frame, decisions.settings.white);
  if (share <= kWorthANote) return;
  notes
      << "note: " << std::round(share * 100.0)
      << " % of the pixels have light below 1 nit, which BT.2390 takes in steps of one nit on the "
         "processor: dark parts will show steps; choose another --algorithm\n";
}

void NoteOtherWhite(std::ostream& notes, const Still& still, const Decisions& decisions) {
  const bool isUsed = still.whiteNits > 0.0F && IsSceneLinear(decisions.source);
  if (!isUsed || still.whiteNits == static_cast<float>(decisions.settings.white)) return;
  notes << "note: the file says that its 1.0 is " << still.whiteNits
        << " nits, as which it is mapped; --white is that of the result\n";
}

}  // namespace

void MapStill(const MapOptions& options, std::ostream& out, std::ostream& notes) {
  CheckStillTarget(options.output, options.overwrite);
  Still still = ReadStill(options.input, options.maxPixels);
  PlannedPicture planned =
      PlanPicture(options.mapping, options.input, still.frame, still.light, still.whiteNits);
  still.frame = {};  // memory for the encoder
  const Decisions decisions = planned.plan.Decide();
  if (options.explain) {
    Explain(out, decisions);
    ExplainExposure(out, planned.exposure, decisions.settings.white);
  }
  if (!options.quiet) {
    for (const std::string& remark : still.remarks) notes << "note: " << remark << '\n';
    NoteOtherWhite(notes, still, decisions);
    WarnOfLight(notes, {decisions.source, still.light}, decisions);
    NoteOptionsWithoutEffect(notes, options.mapping, decisions);
    NoteSteps(notes, planned, decisions);
  }

  StillOutput output;
  output.frame = MapPicture(planned, options.input.string());
  planned.frame = {};
  output.settings = ColorManagementFor(options.mapping.settings.white);
  output.light = LightOfResult(output.frame, options.mapping.settings.white);
  output.depth = options.depth;
  output.overwrite = options.overwrite;
  WriteStill(output, options.output);
  if (!options.quiet && !options.explain) Summarise(out, options, decisions, planned.exposure);
}

}  // namespace Quillon::Cli
