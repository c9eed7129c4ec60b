#include "tools/quillon/map/MapStill.h"

#include <string>

#include "tools/quillon/ApplyPlan.h"
#include "tools/quillon/ColorSpaceNames.h"
#include "tools/quillon/MapPlan.h"
#include "tools/quillon/io/WriteStill.h"
#include "tools/quillon/map/Explain.h"
#include "tools/quillon/picture/Frames.h"
#include "tools/quillon/picture/LightLevels.h"

namespace {

void Summarise(std::ostream& out, const MapOptions& options, const MapPlan& plan) {
  out << options.input.string() << " -> " << options.output.string() << ": "
      << DescribeColorSpace(plan.taggedSource) << ", peak " << plan.sourcePeakNits << " nits ("
      << plan.peakOrigin << ") to " << DescribeColorSpace(options.destination) << ", peak "
      << plan.destinationPeakNits << " nits\n";
}

void NoteOtherWhite(std::ostream& notes, const MapOptions& options, const Still& still) {
  if (still.whiteNits <= 0.0F || still.whiteNits == static_cast<float>(options.white)) return;
  notes << "note: the file says that its 1.0 is " << still.whiteNits << " nits; it is mapped as "
        << options.white << " nits, which --white changes\n";
}

}  // namespace

void MapStill(const MapOptions& options, std::ostream& out, std::ostream& notes) {
  CheckStillTarget(options.output, options.overwrite);
  Still still = ReadStill(options.input, options.maxPixels);
  MapPlan plan = PlanMap(options, still);
  still.frame = {};  // memory for the encoder
  if (options.explain) ExplainPlan(out, plan);
  if (!options.quiet) {
    for (const std::string& remark : still.remarks) notes << "note: " << remark << '\n';
    NoteOtherWhite(notes, options, still);
    NoteOptionsWithoutEffect(notes, options, plan);
  }

  StillOutput output;
  output.frame = ApplyPlan(plan, options.input.string());
  plan.source = {};
  output.settings = ColorManagementFor(options.white);
  output.light = LightOfResult(output.frame, options.white);
  output.depth = options.depth;
  output.overwrite = options.overwrite;
  WriteStill(output, options.output);
  if (!options.quiet && !options.explain) Summarise(out, options, plan);
}
