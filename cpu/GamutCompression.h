#pragma once

#include <functional>

#include "base/SupportVector.h"
#include "host/pavix/GamutMappingUtils.h"

namespace Quillon {

/// Compresses the gamut of one pixel of four floats in place. The parameter vector is that of
/// `GetGamutCompressionSupportParams`; blue, green and red are changed, alpha is not.
using GamutCompressionPixelFunction =
    std::function<void(float* pixel, const SupportVector& params,
                       const PX::GamutMappingUtils::GamutCompressionSettings& settings)>;

/// Algorithm 1. Parameter 0 is the limit L: the source's full-scale signal in linear light of the
/// destination.
struct GamutCompressionReinhard {
  void operator()(float* pixel, const SupportVector& params,
                  const PX::GamutMappingUtils::GamutCompressionSettings& settings) const;
};

/// Algorithm 2. Parameters 0 to 2 are the red, green and blue luminance weights of the
/// destination.
struct GamutCompressionDesaturation {
  void operator()(float* pixel, const SupportVector& params,
                  const PX::GamutMappingUtils::GamutCompressionSettings& settings) const;
};

/// Fills the parameter vector of the settings' algorithm. 0, or 0xA00F000C and an empty vector for
/// an algorithm that does not exist.
int GetGamutCompressionSupportParams(const PX::GamutMappingUtils::GamutMappingSettings& settings,
                                     SupportVector& params);

/// Length of an algorithm's parameter vector: 1, 3, or -1 for one that does not exist.
/// Deliberate: a part of the interface that no path of the engine calls.
int GetGamutCompressionSupportParamsSize(
    orvmediatypes::color::GamutCompressionAlgorithmType algorithmType);

}  // namespace Quillon
