#include <memory>

#include "host/kestrel/FrameManipulators.h"
#include "refhost/ResultCodes.h"
#include "refhost/kestrel/FrameView.h"
#include "refhost/kestrel/MakeBandCopy.h"
#include "refhost/kestrel/PlaneCopy.h"

using orvmediatypes::color::ColorManagementSettings;

namespace RefHost {

namespace {

/// Whether every pixel of the destination has the place of its own source pixel.
bool AreInPlace(const FrameView& source, const FrameView& destination) {
  return !source.info.IsYCbCr() && !destination.info.IsYCbCr() &&
         source.planes[0].data == destination.planes[0].data &&
         source.planes[0].rowBytes == destination.planes[0].rowBytes &&
         source.info.bytesPerSample == destination.info.bytesPerSample;
}

/// A frame of its own with the same samples.
PX::VideoFrameRef Duplicate(const PX::VideoFrameRef& frame, const FrameView& view,
                            FrameView& duplicateView) {
  PX::VideoFrameRef duplicate;
  const int result = CreateSystemFrame(duplicate, {.format = view.format,
                                                   .width = view.width,
                                                   .height = view.height,
                                                   .aspect = frame->GetPixelAspectRatio(),
                                                   .colorSpace = frame->GetColorSpace()});
  if (result < 0 || ViewFrame(duplicate, duplicateView) < 0) return {};
  RunBands(PlaneCopy(view, duplicateView), 0, view.height);
  return duplicate;
}

int CopySystemFrame(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
                    const ColorManagementSettings& settings) {
  FrameView source;
  FrameView destination;
  if (const int result = ViewFrame(from, source); result < 0) return result;
  if (const int result = ViewFrame(to, destination); result < 0) return result;
  if (source.width != destination.width || source.height != destination.height) {
    return kInvalidFrame;
  }
  if (from.Object() == to.Object()) return 0;

  // Memory that both frames show in different ways is the one case with a picture in between.
  PX::VideoFrameRef duplicate;
  if (ShareMemory(source, destination) && !AreInPlace(source, destination)) {
    FrameView duplicateView;
    duplicate = Duplicate(from, source, duplicateView);
    if (!duplicate.IsUsable()) return kInvalidFrame;
    source = duplicateView;
  }
  std::unique_ptr<const BandCopy> copy;
  if (const int result = MakeBandCopy(source, from->GetColorSpace(), destination,
                                      to->GetColorSpace(), settings, copy);
      result < 0) {
    return result;
  }
  RunBands(*copy, 0, destination.height);
  return 0;
}

}  // namespace
}  // namespace RefHost

namespace KS::VideoFrameManipulators {

int CopyFrame(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
              orvmediatypes::RenderQuality /*quality*/, const ColorManagementSettings& settings) {
  return RefHost::CopySystemFrame(from, to, settings);
}

}  // namespace KS::VideoFrameManipulators
