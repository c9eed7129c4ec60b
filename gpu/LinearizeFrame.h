#pragma once

#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/pavix/IVideoFrame.h"

namespace Quillon {

/// Supplies the frame that kernels work on in place: the source itself when it is linear already,
/// else a new frame on the source's device, with the source's size and pixel format, in the linear
/// equivalent of its colour space. Returns 0 or the result of the conversion, or a negative code of
/// the host; `working` is set even when the conversion into it failed. `working` may be the
/// source's own handle.
int LinearizeFrame(const PX::VideoFrameRef& source, PX::VideoFrameRef& working,
                   const orvmediatypes::color::ColorManagementSettings& colorManagement);

}  // namespace Quillon
