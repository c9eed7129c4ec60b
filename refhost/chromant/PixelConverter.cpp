#include "refhost/chromant/PixelConverter.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

#include "refhost/chromant/Primaries.h"
#include "refhost/chromant/TransferCurve.h"
#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

namespace CHR {

bool PixelConverter::IsIdentity() const {
  return params_.hasMatrix == 0 && IsSameTransfer(params_.source, params_.destination);
}

void PixelConverter::Convert(const float* source, float* destination, std::size_t pixels) const {
  constexpr std::size_t kPixelFloats = 4;
  if (source != destination) std::copy_n(source, pixels * kPixelFloats, destination);
  if (IsIdentity()) return;
  for (std::size_t i = 0; i < pixels; ++i) ConvertPixel(params_, destination + i * kPixelFloats);
}

std::unique_ptr<PixelConverter> MakePixelConverter(const ColorSpace& source,
                                                   const ColorSpace& destination,
                                                   const ColorManagementSettings& settings) {
  const double white = static_cast<std::uint32_t>(settings.GetGraphicsWhiteLuminance());
  const auto sourceTransfer = TransferParamsOf(source, white);
  const auto destinationTransfer = TransferParamsOf(destination, white);
  const auto sourcePrimaries = H273::ChromaticitiesOf(source);
  const auto destinationPrimaries = H273::ChromaticitiesOf(destination);
  if (!sourceTransfer.has_value() || !destinationTransfer.has_value() ||
      !sourcePrimaries.has_value() || !destinationPrimaries.has_value()) {
    return nullptr;
  }

  ConversionParams params{};
  params.source = *sourceTransfer;
  params.destination = *destinationTransfer;
  if (!AreSameChromaticities(*sourcePrimaries, *destinationPrimaries)) {
    const Matrix3 matrix = RgbToRgb(*sourcePrimaries, *destinationPrimaries);
    std::copy(matrix.begin(), matrix.end(), std::begin(params.matrix));
    params.hasMatrix = 1;
    params.hasCommonGrey = HaveCommonGrey(*sourcePrimaries, *destinationPrimaries) ? 1 : 0;
  }
  return std::make_unique<PixelConverter>(params);
}

}  // namespace CHR
