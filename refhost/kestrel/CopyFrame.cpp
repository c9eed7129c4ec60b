#include <memory>
#include <utility>

#include "host/KS/FrameManipulators.h"
#include "refhost/kestrel/BandCopy.h"
#include "refhost/kestrel/FrameView.h"
#include "refhost/kestrel/InterleavedCopy.h"
#include "refhost/kestrel/MakeConverter.h"
#include "refhost/kestrel/PlaneCopy.h"
#include "refhost/kestrel/ResultCodes.h"
#include "refhost/kestrel/YCbCrCopy.h"
#include "refhost/orvcore/Bands.h"

using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorManagementSettings;

namespace KS::VideoFrameManipulators {

namespace {

/// Whether equal codes are equal R'G'B' signals.
bool AreCodedAlike(const FormatInfo& info, const ColorDescription& one,
                   const ColorDescription& other) {
  return !info.IsYCbCr() || (one.matrix == other.matrix && one.fullRange == other.fullRange &&
                             one.chromaLocation == other.chromaLocation);
}

/// Whether every pixel of the destination has the place of its own source pixel.
bool AreInPlace(const FrameView& source, const FrameView& destination) {
  return !source.info.IsYCbCr() && !destination.info.IsYCbCr() &&
         source.planes[0].data == destination.planes[0].data &&
         source.planes[0].rowBytes == destination.planes[0].rowBytes &&
         source.info.bytesPerSample == destination.info.bytesPerSample;
}

/// Null when the conversion is not known here.
std::unique_ptr<const BandCopy> MakeBandCopy(const FrameView& source,
                                             const ColorDescription& sourceColors,
                                             const FrameView& destination,
                                             const ColorDescription& destinationColors,
                                             std::shared_ptr<const CHR::PixelConverter> converter) {
  const bool sameSamples = source.format == destination.format && converter == nullptr &&
                           AreCodedAlike(source.info, sourceColors, destinationColors);
  if (sameSamples) return std::make_unique<PlaneCopy>(source, destination);
  if (source.info.IsYCbCr() || destination.info.IsYCbCr()) {
    return MakeYCbCrCopy(source, sourceColors, destination, destinationColors,
                         std::move(converter));
  }
  return std::make_unique<InterleavedCopy>(source, destination, std::move(converter));
}

void RunBands(const BandCopy& copy, int height) {
  orvcore::threads::RunInBands(height, kBandRows,
                               [&copy](int first, int last) { copy.CopyRows(first, last); });
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
  RunBands(PlaneCopy(view, duplicateView), view.height);
  return duplicate;
}

}  // namespace

int CopyFrame(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
              orvmediatypes::RenderQuality /*quality*/, const ColorManagementSettings& settings) {
  FrameView source;
  FrameView destination;
  if (const int result = ViewFrame(from, source); result < 0) return result;
  if (const int result = ViewFrame(to, destination); result < 0) return result;
  if (source.width != destination.width || source.height != destination.height) {
    return kInvalidFrame;
  }
  if (from.Object() == to.Object()) return 0;

  const auto sourceSpace = from->GetColorSpace();
  const auto destinationSpace = to->GetColorSpace();
  std::shared_ptr<const CHR::PixelConverter> converter;
  if (const int result = MakeConverter(sourceSpace, destinationSpace, settings, converter);
      result < 0) {
    return result;
  }

  // Memory that both frames show in different ways is the one case with a picture in between.
  PX::VideoFrameRef duplicate;
  if (ShareMemory(source, destination) && !AreInPlace(source, destination)) {
    FrameView duplicateView;
    duplicate = Duplicate(from, source, duplicateView);
    if (!duplicate.IsUsable()) return kInvalidFrame;
    source = duplicateView;
  }
  const auto copy = MakeBandCopy(source, sourceSpace.Description(), destination,
                                 destinationSpace.Description(), std::move(converter));
  if (copy == nullptr) return kNotSupported;
  RunBands(*copy, destination.height);
  return 0;
}

}  // namespace KS::VideoFrameManipulators
