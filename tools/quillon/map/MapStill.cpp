#include "tools/quillon/map/MapStill.h"

#include <string>

#include "tools/quillon/io/WriteStill.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/options/Explain.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/picture/LightLevels.h"
#include "tools/quillon/picture/MapPicture.h"

namespace Quillon::Cli {

using Mapper::Decisions;

namespace {

void Summarise(std::ostream& out, const MapOptions& options, const Decisions& decisions) {
  out << options.input.string() << " -> " << options.output.string() << ": "
      << DescribeColorSpace(decisions.source) << ", peak " << decisions.sourcePeak.nits << " nits ("
      << decisions.sourcePeak.origin << ") to " << DescribeColorSpace(options.mapping.target.colors)
      << ", peak " << decisions.destinationPeakNits << " nits\n";
}

void NoteOtherWhite(std::ostream& notes, const MapOptions& options, const Still& still) {
  if (still.whiteNits <= 0.0F ||
      still.whiteNits == static_cast<float>(options.mapping.settings.white))
    return;
  notes << "note: the file says that its 1.0 is " << still.whiteNits << " nits; it is mapped as "
        << options.mapping.settings.white << " nits, which --white changes\n";
}

}  // namespace

void MapStill(const MapOptions& options, std::ostream& out, std::ostream& notes) {
  CheckStillTarget(options.output, options.overwrite);
  Still still = ReadStill(options.input, options.maxPixels);
  PlannedPicture planned = PlanPicture(options.mapping, options.input, still.frame, still.light);
  still.frame = {};  // memory for the encoder
  const Decisions decisions = planned.plan.Decide();
  if (options.explain) Explain(out, decisions);
  if (!options.quiet) {
    for (const std::string& remark : still.remarks) notes << "note: " << remark << '\n';
    NoteOtherWhite(notes, options, still);
    WarnOfLight(notes, {decisions.source, still.light}, decisions);
    NoteOptionsWithoutEffect(notes, options.mapping, decisions);
  }

  StillOutput output;
  output.frame = MapPicture(planned, options.input.string());
  planned.frame = {};
  output.settings = ColorManagementFor(options.mapping.settings.white);
  output.light = LightOfResult(output.frame, options.mapping.settings.white);
  output.depth = options.depth;
  output.overwrite = options.overwrite;
  WriteStill(output, options.output);
  if (!options.quiet && !options.explain) Summarise(out, options, decisions);
}

}  // namespace Quillon::Cli
