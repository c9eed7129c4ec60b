#pragma once

#include <array>
#include <cstddef>

#include "base/KernelSignature.h"
#include "cpu/GamutCompression.h"
#include "tonemap/Algorithms.h"

namespace Quillon {

/// Every kernel of the engine: of the gamut compressions, then of the tone curves.
inline constexpr auto kKernels = [] {
  std::array<const KernelSignature*, kGamutCurves.size() + kToneCurves.size()> kernels{};
  std::size_t count = 0;
  for (const GamutCurveFacts& curve : kGamutCurves) kernels[count++] = &curve.kernel;
  for (const ToneCurveFacts& curve : kToneCurves) kernels[count++] = &curve.kernel;
  return kernels;
}();

}  // namespace Quillon
