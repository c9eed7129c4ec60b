#pragma once

#include <optional>
#include <string>

#include "mapper/Device.h"
#include "mapper/Mapping.h"
#include "mapper/Picture.h"
#include "tools/quillon/options/SourceTags.h"

namespace Quillon::Cli {

/// Where the source peak comes from.
enum class PeakSource { Default, Number, Metadata, Measure, Scenes };

/// --peak.
struct PeakOptions {
  PeakSource from = PeakSource::Default;
  double nits = 0.0;                        ///< where `from` is `Number`
  double percent = Mapper::kSteadyPercent;  ///< where it is measured
};

/// --exposure.
struct ExposureOptions {
  bool automatic = false;
  double stops = 0.0;  ///< where it is not automatic
};

/// How pictures are to be mapped, each value checked on its own: what `quillon map` and the
/// commands that show what it does have in common.
struct MappingOptions {
  SourceOverride source;
  PeakOptions peak;
  std::optional<ExposureOptions> exposure;
  Mapper::Target target;
  Mapper::Settings settings;
  std::optional<Mapper::GamutFitting> fit;  ///< --fit, which `SettleFit` puts into the settings
  std::string device = "cpu";               ///< one that `IsDeviceName` takes
};

/// Settles --fit where it is not given. `intoFloats`: the result can hold any colour.
void SettleFit(MappingOptions& options, bool intoFloats);

/// Refuses --explain beside --quiet. Throws CommandError.
void CheckExplainIsSeen(bool explain, bool quiet);

/// Refuses combinations in which an option would have no effect or no meaning. Throws CommandError.
void CheckMappingOptions(const MappingOptions& options);

}  // namespace Quillon::Cli
