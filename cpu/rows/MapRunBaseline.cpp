#include "cpu/rows/RunOf.h"

namespace Quillon {

void MapRunBaseline(const RowCurves& curves, float* pixels, std::size_t count) {
  MapRun(curves, pixels, count);
}

}  // namespace Quillon
