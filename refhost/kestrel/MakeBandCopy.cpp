#include "refhost/kestrel/MakeBandCopy.h"

#include <utility>

#include "refhost/ResultCodes.h"
#include "refhost/kestrel/InterleavedCopy.h"
#include "refhost/kestrel/MakeConverter.h"
#include "refhost/kestrel/PlaneCopy.h"
#include "refhost/kestrel/YCbCrCopy.h"
#include "refhost/orvcore/Bands.h"

using orvmediatypes::color::ColorDescription;

namespace RefHost {

namespace {

/// Whether equal codes are equal R'G'B' signals.
bool AreCodedAlike(const FormatInfo& info, const ColorDescription& one,
                   const ColorDescription& other) {
  return !info.IsYCbCr() || (one.matrix == other.matrix && one.fullRange == other.fullRange &&
                             one.chromaLocation == other.chromaLocation);
}

/// Null when the conversion is not known here.
std::unique_ptr<const BandCopy> Choose(const FrameView& source,
                                       const ColorDescription& sourceColors,
                                       const FrameView& destination,
                                       const ColorDescription& destinationColors,
                                       std::shared_ptr<const PixelConverter> converter) {
  const bool sameSamples = source.format == destination.format && converter == nullptr &&
                           AreCodedAlike(source.info, sourceColors, destinationColors);
  if (sameSamples) return std::make_unique<PlaneCopy>(source, destination);
  if (source.info.IsYCbCr() || destination.info.IsYCbCr()) {
    return MakeYCbCrCopy(source, sourceColors, destination, destinationColors,
                         std::move(converter));
  }
  return std::make_unique<InterleavedCopy>(source, destination, std::move(converter));
}

}  // namespace

int MakeBandCopy(const FrameView& source, const orvmediatypes::color::ColorSpace& sourceSpace,
                 const FrameView& destination,
                 const orvmediatypes::color::ColorSpace& destinationSpace,
                 const orvmediatypes::color::ColorManagementSettings& settings,
                 std::unique_ptr<const BandCopy>& copy) {
  std::shared_ptr<const PixelConverter> converter;
  if (const int result = MakeConverter(sourceSpace, destinationSpace, settings, converter);
      result < 0) {
    return result;
  }
  copy = Choose(source, sourceSpace.Description(), destination, destinationSpace.Description(),
                std::move(converter));
  return copy == nullptr ? kNotSupported : 0;
}

void RunBands(const BandCopy& copy, int first, int last) {
  RunInBands(last - first, kBandRows,
             [&copy, first](int from, int to) { copy.CopyRows(first + from, first + to); });
}

}  // namespace RefHost
