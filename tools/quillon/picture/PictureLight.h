#pragma once

#include "host/pavix/IVideoFrame.h"

namespace Quillon::Cli {

/// A picture as it is compared: float BGRA frames of one size.
struct PictureLight {
  /// R'G'B' in the picture's own colour space, 1.0 at full scale; linear light for a picture that
  /// holds linear light.
  PX::VideoFrameRef signal;
  /// Linear BT.2020 display light, 1.0 at graphics white.
  PX::VideoFrameRef light;
};

/// Reads a tagged frame in system memory. Throws CommandError when it cannot be converted.
PictureLight LightOf(const PX::VideoFrameRef& frame, int white);

/// Linear light in the given ITU-T H.273 primaries.
orvmediatypes::color::ColorSpace LinearLightIn(std::uint8_t primaries);

}  // namespace Quillon::Cli
