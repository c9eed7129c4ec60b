#pragma once

#include <optional>
#include <string>

#include "host/pavix/IVideoFrame.h"
#include "tools/quillon/plot/DrawScene.h"

namespace Quillon::Cli {

/// The larger peak in nits of those of two tagged pictures that hold more than SDR: PQ, HLG, or
/// linear light. Nothing where neither does. Throws CommandError.
std::optional<double> CommonHdrPeak(const PX::VideoFrameRef& a, const PX::VideoFrameRef& b,
                                    int white);

/// A tagged picture in sRGB: converted where it is SDR, else mapped as `quillon map` does from a
/// peak of `hdrPeakNits`. Two pictures that are to be compared by eye get the same peak, lest the
/// curve make the difference. `name` is what messages call the picture. Throws CommandError.
Bitmap PictureForEye(const PX::VideoFrameRef& frame, std::optional<double> hdrPeakNits, int white,
                     const std::string& name);

}  // namespace Quillon::Cli
