#pragma once

#include <cstddef>

#include "curves/GamutFit.h"

namespace Quillon::Mapper {

/// Fits `count` float BGRA pixels in place. The same function, built for the instruction sets by
/// name; results are the same bits.
void FitRunBaseline(const GamutFitParams& params, const float* table, float* pixels,
                    std::size_t count);
#if defined(__x86_64__)
void FitRunAvx2(const GamutFitParams& params, const float* table, float* pixels, std::size_t count);
void FitRunAvx512(const GamutFitParams& params, const float* table, float* pixels,
                  std::size_t count);
#endif

}  // namespace Quillon::Mapper
