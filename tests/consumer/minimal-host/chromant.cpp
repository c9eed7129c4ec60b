// Colours: linear light and PQ, between spaces of the same primaries.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <memory>

#include "host/chromant/Applicability.h"
#include "host/chromant/Conversion.h"
#include "host/chromant/TransferFunctions.h"
#include "host/ironlane/ColorConvertParams.h"

using orvmediatypes::kLinearFloatBGRA;
using orvmediatypes::PixelFormat;
using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

namespace CHR {

namespace {

constexpr int kLinear = 8;  // ITU-T H.273, table 3
constexpr int kPQ = 16;
constexpr int kUnknown = -1;

// SMPTE ST 2084, equations 4.1 and 5.2.
constexpr double kM1 = 2610.0 / 16384.0;
constexpr double kM2 = 2523.0 / 32.0;
constexpr double kC1 = 3424.0 / 4096.0;
constexpr double kC2 = 2413.0 / 128.0;
constexpr double kC3 = 2392.0 / 128.0;

float PQToNits(float signal) {
  const double power = std::pow(std::max(0.0, static_cast<double>(signal)), 1.0 / kM2);
  const double light = std::max(power - kC1, 0.0) / (kC2 - kC3 * power);
  return static_cast<float>(10000.0 * std::pow(light, 1.0 / kM1));
}

float NitsToPQ(float nits) {
  if (!(nits > 0.0F)) return 0.0F;
  const double power = std::pow(static_cast<double>(nits) / 10000.0, kM1);
  return static_cast<float>(std::pow((kC1 + kC2 * power) / (1.0 + kC3 * power), kM2));
}

int TransferOf(const ColorSpace& colorSpace) { return colorSpace.Description().transfer; }

bool IsKnown(const ColorSpace& colorSpace) {
  return TransferOf(colorSpace) == kLinear || TransferOf(colorSpace) == kPQ;
}

float Convert(float value, int from, int to, float white) {
  if (from == to) return value;
  return from == kPQ ? PQToNits(value) / white : NitsToPQ(value * white);
}

float WhiteOf(const ColorManagementSettings& settings) {
  return static_cast<float>(settings.GetGraphicsWhiteLuminance());
}

TransferFunction MakeTransferFn(int transferCharacteristic, float (*curve)(float)) {
  if (transferCharacteristic != kPQ) return {};
  return [curve](float* pixel, float /*scale*/) { std::transform(pixel, pixel + 3, pixel, curve); };
}

}  // namespace

bool IsToneMappingApplicable(const PX::ToneMappingUtils::ToneMapSettings& settings) {
  return settings.algorithmType != orvmediatypes::color::ToneMapAlgorithmType::None;
}

bool IsGamutCompressionApplicable(const PX::GamutMappingUtils::GamutMappingSettings& settings) {
  return settings.algorithmType != orvmediatypes::color::GamutCompressionAlgorithmType::None;
}

bool IsGamutMappingApplicable(const PX::GamutMappingUtils::GamutMappingSettings& settings) {
  return IsGamutCompressionApplicable(settings) ||
         IsToneMappingApplicable(settings.toneMapSettings);
}

int ConvertFrame(const void* sourcePixels, void* destinationPixels, int width, int height,
                 const ColorSpace& sourceColorSpace, PixelFormat sourceFormat, int sourceRowBytes,
                 const ColorSpace& destinationColorSpace, PixelFormat destinationFormat,
                 int destinationRowBytes, const ColorManagementSettings& settings) {
  if (sourceFormat != kLinearFloatBGRA || destinationFormat != kLinearFloatBGRA) return kUnknown;
  if (!IsKnown(sourceColorSpace) || !IsKnown(destinationColorSpace)) return kUnknown;
  if (sourceColorSpace.Description().primaries != destinationColorSpace.Description().primaries) {
    return kUnknown;
  }
  const int from = TransferOf(sourceColorSpace);
  const int to = TransferOf(destinationColorSpace);
  const float white = WhiteOf(settings);
  for (int row = 0; row < height; ++row) {
    const char* in = static_cast<const char*>(sourcePixels) + std::ptrdiff_t{row} * sourceRowBytes;
    char* out = static_cast<char*>(destinationPixels) + std::ptrdiff_t{row} * destinationRowBytes;
    for (int column = 0; column < width; ++column) {
      std::array<float, 4> pixel{};
      std::memcpy(pixel.data(), in + column * sizeof(pixel), sizeof(pixel));
      for (int c = 0; c < 3; ++c) pixel[c] = Convert(pixel[c], from, to, white);
      std::memcpy(out + column * sizeof(pixel), pixel.data(), sizeof(pixel));
    }
  }
  return 0;
}

ColorSpace ORVColorSpaceToEquivalentLinearColorSpace(const ColorSpace& colorSpace) {
  ColorDescription linear = colorSpace.Description();
  linear.transfer = kLinear;
  return ColorSpace(linear);
}

float ConvertSignalToLinearValue(const ColorSpace& colorSpace,
                                 const ColorManagementSettings& settings, float signal) {
  return Convert(signal, TransferOf(colorSpace), kLinear, WhiteOf(settings));
}

bool AreColorSpacesEquivalent(const ColorSpace& first, PixelFormat firstFormat,
                              const ColorSpace& second, PixelFormat secondFormat,
                              int /*matchFlag*/) {
  return firstFormat == secondFormat && TransferOf(first) == TransferOf(second) &&
         first.Description().primaries == second.Description().primaries;
}

int GetColorConverterParamsForColorSpace(const ColorSpace& /*colorSpace*/, bool /*linear*/,
                                         const ColorManagementSettings& /*settings*/,
                                         std::shared_ptr<IL::ColorConvertParams>& params,
                                         orvcore::utility::Guid& /*identity*/) {
  params = std::make_shared<IL::ColorConvertParams>();
  params->luminanceCoefficients = {0.2627F, 0.678F, 0.0593F};  // ITU-R BT.2100, table 6
  return 0;
}

TransferFunction GetSignalToLinearTransferFn(int transferCharacteristic, int /*colorimetry*/) {
  return MakeTransferFn(transferCharacteristic, PQToNits);
}

TransferFunction GetLinearToSignalTransferFn(int transferCharacteristic, int /*colorimetry*/) {
  return MakeTransferFn(transferCharacteristic, NitsToPQ);
}

}  // namespace CHR
