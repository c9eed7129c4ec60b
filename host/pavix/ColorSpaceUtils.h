#pragma once

#include "host/orvmediatypes/ColorSpace.h"

// Questions about colour spaces. The engine asks them on the thread of its caller, while it
// computes the parameters of a curve, and from several threads at once where several frames are
// mapped.

namespace PX::ColorSpaceUtils {

/// Whether destinations are taken at the peak that they are shown with. Asked by the hue-preserving
/// curve alone; where it is false, that curve takes 1.0, graphics white, for the destination's
/// peak.
bool IsNewColorManagementEnabled();

/// Whether the transfer is that of a standard-dynamic-range display, whose signal 1.0 is graphics
/// white. No space is SDR and HDR: where a destination is one of them, the reference white of
/// BT.2390 and BT.2446 method A is the settings' graphics white, and else it is 1.0.
bool IsSDRColorSpace(const orvmediatypes::color::ColorSpace& colorSpace);
/// Whether signals go beyond graphics white: ITU-R BT.2100 PQ and HLG, and in the reference host
/// linear light, which has no ceiling.
bool IsHDRColorSpace(const orvmediatypes::color::ColorSpace& colorSpace);
/// Whether the space is BT.2100 HLG. Asked of the source of a record below version 3, whose peak is
/// then taken as 1000 nits.
bool IsRec2100HLGColorSpace(const orvmediatypes::color::ColorSpace& colorSpace);

/// Peak luminance in whole nits, above 0, from metadata or from what the transfer implies; -1 when
/// it is not known. Asked of destinations by BT.2446 method A alone.
int GetPeakLuminance(const orvmediatypes::color::ColorSpace& colorSpace);

/// Peak luminance in whole nits, above 0, that the colour space's own metadata gives. False, and
/// `nits` as it was (the engine passes -1), when it gives none.
bool GetIfExistsPeakLuminanceFromColorSpaceMetaData(
    const orvmediatypes::color::ColorSpace& colorSpace, int& nits);

}  // namespace PX::ColorSpaceUtils
