#include "gpu/LinearizeFrame.h"

#include <memory>
#include <utility>

#include "base/CopyQuality.h"
#include "base/ResultCodes.h"
#include "base/Trace.h"
#include "gpu/KernelTarget.h"
#include "host/chromant/Conversion.h"
#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameManipulators.h"

namespace Quillon {

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

namespace {

int CreateLike(const PX::VideoFrameRef& source, const std::shared_ptr<IL::Device>& device,
               const ColorSpace& colorSpace, PX::VideoFrameRef& frame) {
  const orvmediatypes::PixelFormat format = source->GetPixelFormat();
  const orvcore::geom::Bounds bounds = source->GetBounds();
  const orvmediatypes::PixelAspectRatio aspect = source->GetPixelAspectRatio();
  const orvmediatypes::FieldType fieldType = source->GetFieldType();
  const orvcore::geom::PointT<int> origin = source->GetOrigin();
  return KS::CreateGPUVideoFrame(frame, device, format, bounds.width, bounds.height, aspect,
                                 fieldType, origin, colorSpace, 0, 0, 0, nullptr, {}, false);
}

}  // namespace

int LinearizeFrame(const PX::VideoFrameRef& source, PX::VideoFrameRef& working,
                   const ColorManagementSettings& colorManagement) {
  const std::shared_ptr<IL::Device> device = DeviceOf(source);
  const ColorSpace colorSpace = source->GetColorSpace();
  if (colorSpace.IsLinear()) {
    working = source;
    return kSuccess;
  }

  PX::VideoFrameRef frame;
  const ColorSpace linear = CHR::ORVColorSpaceToEquivalentLinearColorSpace(colorSpace);
  int result = CreateLike(source, device, linear, frame);
  if (result < 0) {
    TraceFailure([](auto& message) { message << "LinearizeFrame : CreateGPUVideoFrame failed"; });
    return result;
  }
  result = KS::GPUFrameManipulators::CopyFrame(source, frame, kCopyQuality, colorManagement);
  // Deliberate: handed out whatever the copy returned.
  working = std::move(frame);
  if (result < 0) {
    TraceFailure([](auto& message) { message << "LinearizeFrame : Copy to output frame failed"; });
  }
  return result;
}

}  // namespace Quillon
