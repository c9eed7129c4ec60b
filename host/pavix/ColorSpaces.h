#pragma once

#include "host/orvmediatypes/ColorSpace.h"

namespace PX::ColorSpaces {

/// ITU-R BT.2100 PQ, full-range RGB, without luminance metadata. The host's own, and there from the
/// loading of the library to the end of the process. The engine converts single pixels from and to
/// it and compares colour spaces with it; it asks at each of them, so that this should be quick.
/// Any thread.
const orvmediatypes::color::ColorSpace& OR2100PQ();

}  // namespace PX::ColorSpaces
