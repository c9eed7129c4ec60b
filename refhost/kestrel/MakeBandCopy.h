#pragma once

#include <memory>

#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/orvmediatypes/ColorSpace.h"
#include "refhost/kestrel/BandCopy.h"
#include "refhost/kestrel/FrameView.h"

namespace RefHost {

/// What brings the samples of one frame into the other, of the same size. 0; `kNotSupported` when
/// the conversion is not known here, or the colour converter's code.
int MakeBandCopy(const FrameView& source, const orvmediatypes::color::ColorSpace& sourceSpace,
                 const FrameView& destination,
                 const orvmediatypes::color::ColorSpace& destinationSpace,
                 const orvmediatypes::color::ColorManagementSettings& settings,
                 std::unique_ptr<const BandCopy>& copy);

/// Makes rows from `first`, a multiple of `kBandRows`, up to `last` on several threads.
void RunBands(const BandCopy& copy, int first, int last);

}  // namespace RefHost
