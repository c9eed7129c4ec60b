#include "tools/quillon/map/SamplePeak.h"

#include <algorithm>

#include "mapper/Frames.h"
#include "tools/quillon/picture/LightLevels.h"

namespace Quillon::Cli {

namespace {

constexpr int kStrips = 16;
constexpr int kStripRows = 2;  // one row of halved chroma

}  // namespace

double SamplePeak(const PX::VideoFrameRef& frame, int white) {
  const int height = frame->GetBounds().height;
  double peak = 0.0;
  for (int i = 0; i < kStrips; ++i) {
    const int top = static_cast<int>(std::int64_t{height} * i / kStrips) & ~1;
    const int rows = std::min(kStripRows, height - top);
    peak = std::max(peak,
                    MeasureLightLevels(Mapper::ShowRows(frame, top, top + rows), white).peakNits);
  }
  return peak;
}

}  // namespace Quillon::Cli
