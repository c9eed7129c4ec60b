#pragma once

#include <cstddef>
#include <ostream>
#include <vector>

#include "host/orvmediatypes/ColorSpace.h"
#include "tools/quillon/lut/LutLattice.h"

namespace Quillon::Cli {

/// How far the results of one interpolation are from the engine's.
struct InterpolationError {
  double signalMax = 0.0;  ///< of one component; 1 is the whole range of the signal
  double signalMean = 0.0;
  double deltaEMax = 0.0;  ///< delta-E ITP
  double deltaEMean = 0.0;
  double deltaE99 = 0.0;  ///< 99 of 100 results are no farther
};

struct LutError {
  std::size_t points = 0;
  InterpolationError tetrahedral;
  InterpolationError trilinear;
};

/// Holds the LUT against what the engine makes of the same signals. `colorSpace` is that of the
/// results, `white` what 1.0 of linear light is in nits. Throws CommandError.
LutError MeasureLutError(const LutLattice& lattice, const std::vector<Signal>& signals,
                         const std::vector<Signal>& engineResults,
                         const orvmediatypes::color::ColorSpace& colorSpace, int white);

/// The error in lines for the user, each behind `prefix`.
void DescribeLutError(std::ostream& out, const LutError& error, const char* prefix);

}  // namespace Quillon::Cli
