#pragma once

#include <cstddef>
#include <memory>

#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/orvmediatypes/ColorSpace.h"
#include "refhost/chromant/ConversionParams.h"

namespace RefHost {

/// Conversion of four-float pixels (blue, green, red, alpha; signal values of their colour space)
/// from one colour space into another: decode to linear light, 3x3 matrix between primaries,
/// encode. Nothing is clamped; alpha passes unchanged. Made once per pair of frames; `Convert` may
/// be called from any number of threads.
class PixelConverter {
 public:
  explicit PixelConverter(const ConversionParams& params) : params_(params) {}

  /// The two colour spaces are equivalent: `Convert` only copies.
  bool IsIdentity() const;

  /// `source` and `destination` may be the same memory, but must not overlap otherwise.
  void Convert(const float* source, float* destination, std::size_t pixels) const;

  /// The same for pixels given as planes of red, green and blue, in place.
  void ConvertPlanes(float* red, float* green, float* blue, std::size_t pixels) const;

  /// The conversion as kernels take it.
  const ConversionParams& Params() const { return params_; }

 private:
  ConversionParams params_;
};

/// Null when a colour space is empty, or its primaries or transfer are unknown here. The matrix
/// (YCbCr) and range code points are not looked at: the pixels are RGB.
std::unique_ptr<PixelConverter> MakePixelConverter(
    const orvmediatypes::color::ColorSpace& source,
    const orvmediatypes::color::ColorSpace& destination,
    const orvmediatypes::color::ColorManagementSettings& settings);

}  // namespace RefHost
