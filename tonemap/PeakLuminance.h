#pragma once

#include "host/pavix/ToneMappingUtils.h"

namespace Quillon {

/// The settings' source peak in the scale that their algorithm works in: nits for BT.2446 A, else
/// linear light of the destination. 1.0, and a trace message, when the source colour space is
/// empty.
float AdjustedPeakBasedOnInputColorSpace(const PX::ToneMappingUtils::ToneMapSettings& settings);

/// A grey signal value of the source as linear light of the destination. The signal itself when a
/// conversion fails.
float ConvertPeakSignalToLinear(
    const orvmediatypes::color::ColorSpace& source,
    const orvmediatypes::color::ColorSpace& destination,
    const orvmediatypes::color::ColorManagementSettings& colorManagement, float signal);

/// The peak of a colour space's luminance metadata as a signal value of that colour space;
/// `defaultSignal` when it has none or a conversion fails.
float GetPeakSignalFromMetaData(const orvmediatypes::color::ColorSpace& colorSpace,
                                float defaultSignal);

}  // namespace Quillon
