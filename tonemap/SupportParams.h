#pragma once

#include <array>

#include "base/SupportVector.h"
#include "host/pavix/ToneMappingUtils.h"

namespace Quillon {

/// Computes the support parameters of the settings' algorithm. Rewrites the settings' version and
/// peak, and for the automatic choice algorithm and knee: pass a working copy, and hand that copy
/// to the curve. An unknown algorithm is traced and leaves `params` alone. A conversion that fails
/// leaves fewer entries than the algorithm's curve reads.
void GetToneMappingSupportParams(PX::ToneMappingUtils::ToneMapSettings& settings,
                                 SupportVector& params);

/// Declared length of an algorithm's vector; -1, and a trace message, when it has none (the
/// automatic choice among them).
int GetToneMappingSupportParamsSize(orvmediatypes::color::ToneMapAlgorithmType algorithmType);

/// Luminance weights of a colour space's red, green and blue.
std::array<float, 3> GetDestinationLuminanceWeights(
    const orvmediatypes::color::ColorSpace& destination,
    const orvmediatypes::color::ColorManagementSettings& colorManagement);

}  // namespace Quillon
