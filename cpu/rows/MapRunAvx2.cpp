#include "cpu/rows/RunOf.h"

namespace Quillon {

void MapRunAvx2(const RowCurves& curves, float* pixels, std::size_t count) {
  MapRun(curves, pixels, count);
}

}  // namespace Quillon
