#include "tools/quillon/map/MapOptions.h"

#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

void CheckMapOptions(const MapOptions& options) {
  CheckMappingOptions(options.mapping);
  CheckExplainIsSeen(options.explain, options.quiet);
}

void CheckClipOptions(const MapOptions& options) {
  RefuseUsage(options.quiet && options.clip.dryRun,
              "--dry-run prints and --quiet prints nothing; give one of them");
  RefuseUsage(options.quiet && options.clip.progress.has_value(),
              "--progress has no effect with --quiet; give one of them");
  RefuseUsage(options.explain && options.clip.dryRun,
              "--explain has no effect with --dry-run, which explains everything; leave it out");
}

void CheckStillOptions(const MapOptions& options) {
  const std::string given = options.clip.FirstGiven();
  RefuseUsage(!given.empty(), given + " is for clips; " + options.input.string() +
                                  " is a still, on which it has no effect");
  RefuseUsage(options.mapping.peak.from == PeakSource::Scenes,
              "--peak scenes is for clips; a still is measured with --peak measure");
}

}  // namespace Quillon::Cli
