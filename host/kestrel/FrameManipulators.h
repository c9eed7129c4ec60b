#pragma once

#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/pavix/IVideoFrame.h"

namespace KS::VideoFrameManipulators {

/// Copies pixels between two frames in system memory of equal width and height, converting
/// format and colour space. 0 or a negative code.
int CopyFrame(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
              orvmediatypes::RenderQuality quality,
              const orvmediatypes::color::ColorManagementSettings& settings);

}  // namespace KS::VideoFrameManipulators

namespace KS::GPUFrameManipulators {

/// The same where at least one of the frames lives on a GPU.
int CopyFrame(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
              orvmediatypes::RenderQuality quality,
              const orvmediatypes::color::ColorManagementSettings& settings);

}  // namespace KS::GPUFrameManipulators
