#pragma once

#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/pavix/IVideoFrame.h"

// Copies with conversion. The tags of both frames say what the pixels mean and are to mean, and
// stay as they are. The engine passes usable handles to two different frames of equal width and
// height, and 4 for `quality`. Called on the thread of its caller, and from several threads at once
// for different frames. 0 or above, or a negative code, which the engine hands on; `to` may then
// hold anything.

namespace KS::VideoFrameManipulators {

/// Copies pixels between two frames in system memory, converting format and colour space. All
/// pixels are there when it returns. Alpha is converted in format alone.
int CopyFrame(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
              orvmediatypes::RenderQuality quality,
              const orvmediatypes::color::ColorManagementSettings& settings);

}  // namespace KS::VideoFrameManipulators

namespace KS::GPUFrameManipulators {

/// The same where frames live on GPUs. The engine copies between frames on GPUs alone. The copy
/// comes after work on either frame that was given before, kernels among it, and before work that
/// is given later; it need not be done when this returns.
int CopyFrame(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
              orvmediatypes::RenderQuality quality,
              const orvmediatypes::color::ColorManagementSettings& settings);

}  // namespace KS::GPUFrameManipulators
