#pragma once

#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/pavix/IVideoFrame.h"

namespace Quillon {

/// Supplies the frame that the CPU engine works on in place: linear float BGRA, in the linear
/// equivalent of the source's colour space. When both frames are linear float BGRA already it is
/// the destination itself, filled from the source and with its colour-space tag left alone; else
/// a new frame with the source's size and aspect. Returns 0 or the failure of a host call;
/// `working` is set even when the conversion into it failed.
int GetLinearSrcAndDestFrames(const PX::VideoFrameRef& source, const PX::VideoFrameRef& destination,
                              const orvmediatypes::color::ColorManagementSettings& colorManagement,
                              PX::VideoFrameRef& working);

}  // namespace Quillon
