#pragma once

#include "host/orvmediatypes/ColorSpace.h"

namespace PX::ColorSpaceUtils {

bool IsNewColorManagementEnabled();

bool IsSDRColorSpace(const orvmediatypes::color::ColorSpace& colorSpace);
bool IsHDRColorSpace(const orvmediatypes::color::ColorSpace& colorSpace);
bool IsRec2100HLGColorSpace(const orvmediatypes::color::ColorSpace& colorSpace);

/// Peak luminance in whole nits, -1 when it is not known.
int GetPeakLuminance(const orvmediatypes::color::ColorSpace& colorSpace);

/// Peak luminance that the colour space's own metadata gives. False, and `nits` as it was, when
/// it gives none.
bool GetIfExistsPeakLuminanceFromColorSpaceMetaData(
    const orvmediatypes::color::ColorSpace& colorSpace, int& nits);

}  // namespace PX::ColorSpaceUtils
