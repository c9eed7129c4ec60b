#include "refhost/chromant/PixelConverter.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "curves/Matrix3.h"
#include "refhost/chromant/Primaries.h"
#include "refhost/chromant/TransferCurve.h"
#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

namespace CHR {

namespace {

constexpr std::size_t kPixelFloats = 4;

/// Light is worked on in double precision and rounded once, to the destination's float.
class Converter final : public PixelConverter {
 public:
  /// `matrix`: nothing where the primaries are the same. `commonGrey`: it maps grey to grey.
  Converter(const TransferCurve& source, const TransferCurve& destination,
            const std::optional<Matrix3>& matrix, bool commonGrey)
      : source_(source), destination_(destination), matrix_(matrix), commonGrey_(commonGrey) {}

  bool IsIdentity() const override { return !matrix_.has_value() && source_ == destination_; }

  void Convert(const float* source, float* destination, std::size_t pixels) const override {
    if (IsIdentity()) {
      if (source != destination) std::copy_n(source, pixels * kPixelFloats, destination);
      return;
    }
    constexpr std::size_t kChunk = 256;
    std::array<double, 3 * kChunk> rgb{};
    for (std::size_t done = 0; done < pixels; done += kChunk) {
      const std::size_t count = std::min(kChunk, pixels - done);
      ConvertChunk(source + done * kPixelFloats, destination + done * kPixelFloats,
                   std::span(rgb).first(3 * count));
    }
  }

 private:
  void ConvertChunk(const float* source, float* destination, std::span<double> rgb) const {
    const std::size_t count = rgb.size() / 3;
    for (std::size_t i = 0; i < count; ++i) {
      for (std::size_t c = 0; c < 3; ++c) rgb[3 * i + c] = source[i * kPixelFloats + 2 - c];
    }
    source_.Decode(rgb);
    if (matrix_.has_value()) {
      const auto transform = commonGrey_ ? ConvertPrimaries : TransformByMatrix3;
      for (std::size_t i = 0; i < count; ++i) transform(matrix_->data(), &rgb[3 * i]);
    }
    destination_.Encode(rgb);
    for (std::size_t i = 0; i < count; ++i) {
      float* pixel = destination + i * kPixelFloats;
      for (std::size_t c = 0; c < 3; ++c) pixel[2 - c] = static_cast<float>(rgb[3 * i + c]);
      pixel[3] = source[i * kPixelFloats + 3];
    }
  }

  TransferCurve source_;
  TransferCurve destination_;
  std::optional<Matrix3> matrix_;
  bool commonGrey_;
};

}  // namespace

std::unique_ptr<PixelConverter> MakePixelConverter(const ColorSpace& source,
                                                   const ColorSpace& destination,
                                                   const ColorManagementSettings& settings) {
  const double white = static_cast<std::uint32_t>(settings.GetGraphicsWhiteLuminance());
  const auto sourceCurve = TransferCurve::Of(source, white);
  const auto destinationCurve = TransferCurve::Of(destination, white);
  const auto sourcePrimaries = H273::ChromaticitiesOf(source);
  const auto destinationPrimaries = H273::ChromaticitiesOf(destination);
  if (!sourceCurve.has_value() || !destinationCurve.has_value() || !sourcePrimaries.has_value() ||
      !destinationPrimaries.has_value()) {
    return nullptr;
  }

  std::optional<Matrix3> matrix;
  if (!AreSameChromaticities(*sourcePrimaries, *destinationPrimaries)) {
    matrix = RgbToRgb(*sourcePrimaries, *destinationPrimaries);
  }
  return std::make_unique<Converter>(*sourceCurve, *destinationCurve, matrix,
                                     HaveCommonGrey(*sourcePrimaries, *destinationPrimaries));
}

}  // namespace CHR
