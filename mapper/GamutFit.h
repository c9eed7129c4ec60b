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
  GamutFitParams params{};
  std::vector<float> table;  ///< as curves/GamutFit.h describes it
};

/// Whether a colour space has colours that the other's primaries cannot mix. False where either's
/// primaries are not known.
bool ReachesBeyond(const orvmediatypes::color::ColorSpace& source,
                   const orvmediatypes::color::ColorSpace& destination);

/// The fit into the primaries of `destination`, whose largest channel is `peakNits`; linear light
/// is 1.0 at `white` nits. How soon it holds colours back goes by the reach of BT.2020, wherever
/// they come from, so that one colour comes out alike from every container. Null where the
/// destination's primaries are not known.
std::shared_ptr<const GamutFit> MakeGamutFit(const orvmediatypes::color::ColorSpace& destination,
                                             double peakNits, int white);

/// Fits `count` float BGRA pixels of linear light in place. `set` must be one that can run.
void FitPixels(InstructionSet set, const GamutFit& fit, float* pixels, std::size_t count);

}  // namespace Quillon::Mapper
