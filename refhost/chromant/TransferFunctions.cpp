#include "host/chromant/TransferFunctions.h"

#include <array>
#include <cstdint>
#include <optional>

#include "refhost/chromant/TransferCurve.h"
#include "refhost/orvmediatypes/H273.h"

namespace CHR {

namespace {

/// The curve in the unit of transfer functions: nits for PQ and HLG (BT.2020 primaries, a display
/// of 1000 nits); light relative to the white for all others, which have no luminance of their
/// own.
std::optional<TransferParams> CurveOf(int transferCharacteristic, int videoColorimetry) {
  if (videoColorimetry != 0) return std::nullopt;
  if (transferCharacteristic < 0 || transferCharacteristic > UINT8_MAX) return std::nullopt;
  orvmediatypes::color::ColorDescription description;
  description.primaries = RefHost::kPrimariesBT2020;
  description.transfer = static_cast<std::uint8_t>(transferCharacteristic);
  return RefHost::TransferParamsOf(orvmediatypes::color::ColorSpace(description), 1.0);
}

using Rgb = std::array<double, 3>;

// Pixels are blue, green, red, like everywhere; curves take red, green, blue.
Rgb Load(const float* pixel) { return {pixel[2], pixel[1], pixel[0]}; }

void Store(const Rgb& rgb, float* pixel) {
  for (std::size_t c = 0; c < 3; ++c) pixel[2 - c] = static_cast<float>(rgb[c]);
}

}  // namespace

TransferFunction GetSignalToLinearTransferFn(int transferCharacteristic, int videoColorimetry) {
  const auto curve = CurveOf(transferCharacteristic, videoColorimetry);
  if (!curve.has_value()) return {};
  return [curve = *curve](float* pixel, float scale) {
    Rgb rgb = Load(pixel);
    DecodePixel(curve, rgb.data());
    for (double& channel : rgb) channel *= scale;
    Store(rgb, pixel);
  };
}

TransferFunction GetLinearToSignalTransferFn(int transferCharacteristic, int videoColorimetry) {
  const auto curve = CurveOf(transferCharacteristic, videoColorimetry);
  if (!curve.has_value()) return {};
  return [curve = *curve](float* pixel, float scale) {
    Rgb rgb = Load(pixel);
    for (double& channel : rgb) channel /= scale;
    EncodePixel(curve, rgb.data());
    Store(rgb, pixel);
  };
}

}  // namespace CHR
