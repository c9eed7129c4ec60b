#pragma once

#include <cstddef>
#include <vector>

#include "host/pavix/IVideoFrame.h"
#include "tools/quillon/lut/LutLattice.h"

namespace Quillon::Cli {

/// The signals as the pixels of a new float frame, row after row; what is left of the last row is
/// black. Throws CommandError.
PX::VideoFrameRef FrameOfSignals(const std::vector<Signal>& signals,
                                 const orvmediatypes::color::ColorSpace& colorSpace);

/// The first `count` pixels of a float frame.
std::vector<Signal> SignalsOfFrame(const PX::VideoFrameRef& frame, std::size_t count);

}  // namespace Quillon::Cli
