#include "tools/quillon/picture/PictureForEye.h"

#include <algorithm>

#include "host/pavix/ColorSpaceUtils.h"
#include "tools/quillon/options/ColorSpaceNames.h"
#include "tools/quillon/picture/BitmapFrame.h"
#include "tools/quillon/picture/LightLevels.h"
#include "tools/quillon/picture/MapPicture.h"
#include "tools/quillon/picture/PictureLight.h"

namespace Quillon::Cli {

namespace {
bool IsSdr(const PX::VideoFrameRef& frame) {
  return PX::ColorSpaceUtils::IsSDRColorSpace(frame->GetColorSpace());
}
}  // namespace

std::optional<double> CommonHdrPeak(const PX::VideoFrameRef& a, const PX::VideoFrameRef& b,
                                    int white) {
  std::optional<double> peak;
  for (const PX::VideoFrameRef& frame : {a, b}) {
    if (IsSdr(frame)) continue;
    const double own = MeasureLightLevels(LightOf(frame, white).light, white).steadyPeakNits;
    peak = std::max(peak.value_or(0.0), own);
  }
  return peak;
}

Bitmap PictureForEye(const PX::VideoFrameRef& frame, std::optional<double> hdrPeakNits, int white,
                     const std::string& name) {
  MappingOptions options;
  options.target.colors = ColorSpaceOfName("srgb");
  options.settings.white = white;
  if (!IsSdr(frame) && hdrPeakNits.has_value()) options.peak = {PeakSource::Number, *hdrPeakNits};
  return BitmapOfFrame(MapPicture(PlanPicture(options, name, frame), name));
}

}  // namespace Quillon::Cli
