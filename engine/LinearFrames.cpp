#include "engine/LinearFrames.h"

#include "base/CopyQuality.h"
#include "base/FrameMemory.h"
#include "base/Trace.h"
#include "host/chromant/Conversion.h"
#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameManipulators.h"

namespace Quillon {

using orvmediatypes::kLinearFloatBGRA;
using orvmediatypes::PixelFormat;
using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

namespace {

int LinearizeIntoDestination(const PX::VideoFrameRef& source, const PX::VideoFrameRef& destination,
                             const ColorSpace& sourceColorSpace,
                             const ColorManagementSettings& colorManagement) {
  const FrameMemory from(source);
  const FrameMemory to(destination);
  const std::int32_t fromRowBytes = from.RowBytes();
  const std::int32_t toRowBytes = to.RowBytes();
  const PixelFormat toFormat = destination->GetPixelFormat();
  const ColorSpace linear = CHR::ORVColorSpaceToEquivalentLinearColorSpace(sourceColorSpace);
  const PixelFormat fromFormat = source->GetPixelFormat();
  const orvcore::geom::Bounds bounds = source->GetBounds();
  const void* fromPixels = from.Data();
  void* toPixels = to.Data();
  return CHR::ConvertFrame(fromPixels, toPixels, bounds.width, bounds.height, sourceColorSpace,
                           fromFormat, fromRowBytes, linear, toFormat, toRowBytes, colorManagement);
}

int LinearizeIntoNewFrame(const PX::VideoFrameRef& source, const ColorSpace& sourceColorSpace,
                          const ColorManagementSettings& colorManagement,
                          PX::VideoFrameRef& working) {
  const ColorSpace linear = CHR::ORVColorSpaceToEquivalentLinearColorSpace(sourceColorSpace);
  const orvmediatypes::PixelAspectRatio aspect = source->GetPixelAspectRatio();
  const orvcore::geom::Bounds bounds = source->GetBounds();

  PX::VideoFrameRef frame;
  int result = KS::CreateVideoFrame(frame, kLinearFloatBGRA, bounds.width, bounds.height, aspect,
                                    linear, false, false);
  if (result < 0) return result;
  result = KS::VideoFrameManipulators::CopyFrame(source, frame, kCopyQuality, colorManagement);
  // Deliberate: handed out whatever the copy returned.
  working = std::move(frame);
  return result;
}

}  // namespace

int GetLinearSrcAndDestFrames(const PX::VideoFrameRef& source, const PX::VideoFrameRef& destination,
                              const ColorManagementSettings& colorManagement,
                              PX::VideoFrameRef& working) {
  const ColorSpace sourceColorSpace = source->GetColorSpace();

  int result = 0;
  if (source->GetPixelFormat() == kLinearFloatBGRA &&
      destination->GetPixelFormat() == kLinearFloatBGRA) {
    // Deliberate: handed out whatever the conversion returned, and with the tag that it had.
    result = LinearizeIntoDestination(source, destination, sourceColorSpace, colorManagement);
    working = destination;
  } else {
    result = LinearizeIntoNewFrame(source, sourceColorSpace, colorManagement, working);
  }
  if (result < 0) {
    TraceFailure([](auto& message) { message << "GetLinearSrcAndDestFrames : failed"; });
  }
  return result;
}

}  // namespace Quillon
