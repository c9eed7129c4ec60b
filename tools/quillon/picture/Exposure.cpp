#include "tools/quillon/picture/Exposure.h"

#include <cmath>
#include <iomanip>
#include <sstream>

#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/picture/SceneLight.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

double Exposure::Factor() const { return std::exp2(stops); }

std::string Exposure::Describe(int white) const {
  std::ostringstream text;
  text << std::showpos << stops << std::noshowpos << " stops";
  if (!logAverageNits) return text.str();
  text << " (auto: log-average " << *logAverageNits << " nits";
  if (*logAverageNits > 0.0) {
    text << " to " << *logAverageNits * Factor() << "; " << kGreyOfWhite << " of white is "
         << kGreyOfWhite * white;
  }
  text << ')';
  return text.str();
}

std::optional<Exposure> ResolveExposure(const MappingOptions& options,
                                        const std::filesystem::path& path,
                                        const orvmediatypes::color::ColorDescription& colors,
                                        const std::function<double()>& logAverageNits) {
  if (!options.exposure) return std::nullopt;
  RefuseUsage(!IsSceneLinear(colors), "--exposure is for scene-linear light; " + path.string() +
                                          " is " + DescribeColorSpace(colors) +
                                          ", whose light has a scale of its own");
  if (!options.exposure->automatic) return Exposure{options.exposure->stops, {}};
  const double average = logAverageNits();
  return Exposure{AutomaticStops(average, options.settings.white), average};
}

}  // namespace Quillon::Cli
