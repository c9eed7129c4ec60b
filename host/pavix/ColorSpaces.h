#pragma once

#include "host/orvmediatypes/ColorSpace.h"

namespace PX::ColorSpaces {

/// ITU-R BT.2100 PQ, full-range RGB, without luminance metadata.
const orvmediatypes::color::ColorSpace& OR2100PQ();

}  // namespace PX::ColorSpaces
