#include "engine/ApplyGamutMappingSW.h"

#include "base/CopyQuality.h"
#include "base/FrameMemory.h"
#include "base/ResultCodes.h"
#include "base/Trace.h"
#include "base/WorkingColorManagement.h"
#include "cpu/QuillonImpl.h"
#include "engine/LinearFrames.h"
#include "host/chromant/Applicability.h"
#include "host/chromant/Conversion.h"
#include "host/kestrel/FrameManipulators.h"

namespace Quillon {

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

namespace {

int CopyUnmapped(const PX::VideoFrameRef& source, const PX::VideoFrameRef& destination,
                 const ColorManagementSettings& colorManagement) {
  if (source.Object() == destination.Object()) return kSuccess;
  const int result =
      KS::VideoFrameManipulators::CopyFrame(source, destination, kCopyQuality, colorManagement);
  if (result < 0) {
    TraceFailure(
        [](auto& message) { message << "ApplyGamutMappingSW : No operation Copy frame failed"; });
  }
  return result;
}

int ConvertInPlace(const PX::VideoFrameRef& frame, const ColorSpace& sourceColorSpace,
                   const ColorSpace& destinationColorSpace,
                   const ColorManagementSettings& colorManagement) {
  const FrameMemory memory(frame);
  const std::int32_t rowBytes = memory.RowBytes();
  // Deliberate: the format is read once for each side of the conversion.
  const orvmediatypes::PixelFormat fromFormat = frame->GetPixelFormat();
  const orvmediatypes::PixelFormat toFormat = frame->GetPixelFormat();
  const ColorSpace linear = CHR::ORVColorSpaceToEquivalentLinearColorSpace(sourceColorSpace);
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  void* pixels = memory.Data();
  return CHR::ConvertFrame(pixels, pixels, bounds.width, bounds.height, linear, fromFormat,
                           rowBytes, destinationColorSpace, toFormat, rowBytes, colorManagement);
}

/// Brings the mapped working frame into the destination's own colour space.
int Deliver(const PX::VideoFrameRef& working, const ColorSpace& sourceColorSpace,
            const ColorSpace& destinationColorSpace, const ColorManagementSettings& colorManagement,
            PX::VideoFrameRef& destination) {
  if (working.Object() != destination.Object()) {
    return KS::VideoFrameManipulators::CopyFrame(working, destination, kCopyQuality,
                                                 colorManagement);
  }
  const int result =
      ConvertInPlace(working, sourceColorSpace, destinationColorSpace, colorManagement);
  // Deliberate: whatever the conversion returned.
  working->SetColorSpace(destinationColorSpace);
  destination = working;
  return result;
}

}  // namespace

int ApplyGamutMappingSW(const PX::VideoFrameRef& source,
                        const PX::GamutMappingUtils::GamutMappingSettings& settings,
                        PX::VideoFrameRef& destination) {
  const ColorManagementSettings colorManagement =
      WorkingColorManagementSettings(settings.toneMapSettings);
  if (!CHR::IsGamutMappingApplicable(settings)) {
    return CopyUnmapped(source, destination, colorManagement);
  }

  const ColorSpace sourceColorSpace = source->GetColorSpace();
  const ColorSpace destinationColorSpace = destination->GetColorSpace();

  PX::VideoFrameRef working;
  int result = GetLinearSrcAndDestFrames(source, destination, colorManagement, working);
  if (result < 0) {
    TraceFailure([](auto& message) {
      message << "ApplyGamutMappingSW : GetLinearSrcAndDestFrames : Failed";
    });
    return result;
  }

  // Deliberate: the working frame is source and destination.
  result = QuillonImpl().GenerateToneMappedFrame(working, settings, working);
  if (result < 0) {
    TraceFailure(
        [](auto& message) { message << "ApplyGamutMappingSW : GenerateToneMappedFrame : Failed"; });
    return result;
  }

  result = Deliver(working, sourceColorSpace, destinationColorSpace, colorManagement, destination);
  if (result < 0) {
    // Deliberate: "aspace changed", as hosts know the text.
    TraceFailure([](auto& message) {
      message << "ApplyGamutMappingSW : Conversion to destination non-linear color aspace changed";
    });
  }
  return result;
}

}  // namespace Quillon
