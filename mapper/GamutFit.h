#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "curves/GamutFit.h"
#include "curves/lanes/InstructionSet.h"
#include "host/orvmediatypes/ColorSpace.h"

namespace Quillon::Mapper {

/// What brings pixels into a destination's gamut: made once for a plan, read by many threads.
struct GamutFit {
  GamutFitParams params;
  std::vector<float> table;  ///< as curves/GamutFit.h describes it
};

/// The fit into the primaries of `destination`, whose largest channel is `peakNits`, for pictures
/// in the primaries of `source`; linear light is 1.0 at `white` nits. Null where the source's gamut
/// does not reach beyond the destination's, or where either is not known.
std::shared_ptr<const GamutFit> MakeGamutFit(const orvmediatypes::color::ColorSpace& source,
                                             const orvmediatypes::color::ColorSpace& destination,
                                             double peakNits, int white);

/// Fits `count` float BGRA pixels of linear light in place. `set` must be one that can run.
void FitPixels(InstructionSet set, const GamutFit& fit, float* pixels, std::size_t count);

}  // namespace Quillon::Mapper
