#include "mapper/rows/FitRun.h"
#include "mapper/rows/FitRuns.h"

namespace Quillon::Mapper {

void FitRunAvx512(const GamutFitParams& params, const float* table, float* pixels,
                  std::size_t count) {
  FitRun(params, table, pixels, count);
}

}  // namespace Quillon::Mapper
