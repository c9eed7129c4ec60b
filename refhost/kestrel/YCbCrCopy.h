#pragma once

#include <memory>

#include "host/orvmediatypes/ColorSpace.h"
#include "refhost/chromant/PixelConverter.h"
#include "refhost/kestrel/BandCopy.h"
#include "refhost/kestrel/FrameView.h"

namespace RefHost {

/// A copy of which at least one side is YCbCr. Without a converter only samples, range, matrix and
/// chroma are converted. Null when a matrix, or the way from one side to the other, is not known
/// here. The frames share no memory.
std::unique_ptr<const BandCopy> MakeYCbCrCopy(
    const FrameView& source, const orvmediatypes::color::ColorDescription& sourceColors,
    const FrameView& destination, const orvmediatypes::color::ColorDescription& destinationColors,
    std::shared_ptr<const PixelConverter> converter);

}  // namespace RefHost
