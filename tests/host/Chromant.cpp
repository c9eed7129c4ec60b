#include <algorithm>
#include <cmath>
#include <span>
#include <string>

#include "host/chromant/Applicability.h"
#include "host/chromant/Conversion.h"
#include "host/chromant/TransferFunctions.h"
#include "host/ironlane/ColorConvertParams.h"
#include "tests/host/Describe.h"
#include "tests/host/Frame.h"
#include "tests/host/Host.h"
#include "tests/host/Inventory.h"

using orvmediatypes::PixelFormat;
using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;
using scripted::Arguments;
using scripted::Describe;
using scripted::Host;
using scripted::Outcome;

namespace CHR {

namespace {

constexpr int kLinearTransfer = 8;

/// "<frame>.pixels" for a frame's pixels, else the floats themselves.
std::string DescribePixels(const void* pixels, int width, int height) {
  if (pixels == nullptr) return "null";
  if (const std::string name = scripted::NameOfPixels(pixels); !name.empty()) {
    return name + ".pixels";
  }
  const auto count = 4 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  return Describe(std::span(static_cast<const float*>(pixels), count));
}

/// SMPTE ST 2084 in double precision; 0 for every input at or below 0.
float PQToNits(float signal) {
  if (!(signal > 0.0F)) return std::isnan(signal) ? signal : 0.0F;
  const double power = std::pow(static_cast<double>(signal), 32.0 / 2523.0);
  const double ratio =
      std::max(power - 3424.0 / 4096.0, 0.0) / (2413.0 / 128.0 - 2392.0 / 128.0 * power);
  return static_cast<float>(10000.0 * std::pow(ratio, 16384.0 / 2610.0));
}

float NitsToPQ(float nits) {
  if (!(nits > 0.0F)) return std::isnan(nits) ? nits : 0.0F;
  const double power = std::pow(static_cast<double>(nits) / 10000.0, 2610.0 / 16384.0);
  return static_cast<float>(std::pow(
      (3424.0 / 4096.0 + 2413.0 / 128.0 * power) / (1.0 + 2392.0 / 128.0 * power), 2523.0 / 32.0));
}

/// A recorded transfer function, or none where the call is to yield nothing.
TransferFunction Make(const char* getter, const char* function, float (*curve)(float),
                      int transferCharacteristic, int videoColorimetry) {
  const bool normal = Host::Instance()
                          .Enter(getter, Arguments(transferCharacteristic, videoColorimetry))
                          .IsNormal();
  if (!normal) return {};
  return [function = std::string(function), curve](float* pixel, float scale) {
    const std::span<float> channels(pixel, 3);
    const std::string text = Describe(std::span<const float>(channels));
    if (!Host::Instance().Enter(function, Arguments(text, scale)).IsNormal()) return;
    std::transform(channels.begin(), channels.end(), channels.begin(), curve);
  };
}

bool SameCodePoints(const ColorDescription& first, const ColorDescription& second) {
  return first.primaries == second.primaries && first.transfer == second.transfer &&
         first.matrix == second.matrix && first.fullRange == second.fullRange;
}

}  // namespace

bool IsGamutMappingApplicable(const PX::GamutMappingUtils::GamutMappingSettings& settings) {
  const bool normal =
      Host::Instance().Enter("CHR::IsGamutMappingApplicable", Describe(settings)).IsNormal();
  return normal && Host::Instance().results.gamutMappingApplicable;
}

bool IsGamutCompressionApplicable(const PX::GamutMappingUtils::GamutMappingSettings& settings) {
  const bool normal =
      Host::Instance().Enter("CHR::IsGamutCompressionApplicable", Describe(settings)).IsNormal();
  return normal && Host::Instance().results.gamutCompressionApplicable;
}

bool IsToneMappingApplicable(const PX::ToneMappingUtils::ToneMapSettings& settings) {
  const bool normal =
      Host::Instance().Enter("CHR::IsToneMappingApplicable", Describe(settings)).IsNormal();
  Host::Instance().results.seeToneMapSettings(settings);
  return normal && Host::Instance().results.toneMappingApplicable;
}

int ConvertFrame(const void* sourcePixels, void* destinationPixels, int width, int height,
                 const ColorSpace& sourceColorSpace, PixelFormat sourceFormat, int sourceRowBytes,
                 const ColorSpace& destinationColorSpace, PixelFormat destinationFormat,
                 int destinationRowBytes, const ColorManagementSettings& settings) {
  const std::string source = DescribePixels(sourcePixels, width, height);
  const std::string destination = sourcePixels == destinationPixels
                                      ? std::string("in place")
                                      : DescribePixels(destinationPixels, width, height);
  const Outcome outcome = Host::Instance().Enter(
      "CHR::ConvertFrame",
      Arguments(source, destination, width, height, sourceColorSpace, sourceFormat, sourceRowBytes,
                destinationColorSpace, destinationFormat, destinationRowBytes, settings));
  if (!outcome.IsNormal()) return outcome.code;
  Host::Instance().results.convertFrame({static_cast<const float*>(sourcePixels),
                                         static_cast<float*>(destinationPixels), width, height,
                                         sourceColorSpace, destinationColorSpace, settings});
  return 0;
}

ColorSpace ORVColorSpaceToEquivalentLinearColorSpace(const ColorSpace& colorSpace) {
  const bool normal =
      Host::Instance()
          .Enter("CHR::ORVColorSpaceToEquivalentLinearColorSpace", Describe(colorSpace))
          .IsNormal();
  if (!normal) return {};
  ColorDescription colors = colorSpace.Description();
  colors.transfer = kLinearTransfer;
  return ColorSpace(colors);
}

float ConvertSignalToLinearValue(const ColorSpace& colorSpace,
                                 const ColorManagementSettings& settings, float signal) {
  const bool normal =
      Host::Instance()
          .Enter("CHR::ConvertSignalToLinearValue", Arguments(colorSpace, settings, signal))
          .IsNormal();
  return normal ? Host::Instance().results.convertSignalToLinear(colorSpace, signal) : 0.0F;
}

bool AreColorSpacesEquivalent(const ColorSpace& first, PixelFormat firstFormat,
                              const ColorSpace& second, PixelFormat secondFormat, int matchFlag) {
  const bool normal = Host::Instance()
                          .Enter("CHR::AreColorSpacesEquivalent",
                                 Arguments(first, firstFormat, second, secondFormat, matchFlag))
                          .IsNormal();
  return normal && SameCodePoints(first.Description(), second.Description());
}

int GetColorConverterParamsForColorSpace(const ColorSpace& colorSpace, bool linear,
                                         const ColorManagementSettings& settings,
                                         std::shared_ptr<IL::ColorConvertParams>& params,
                                         orvcore::utility::Guid& identity) {
  const Outcome outcome = Host::Instance().Enter("CHR::GetColorConverterParamsForColorSpace",
                                                 Arguments(colorSpace, linear, settings));
  if (!outcome.IsNormal()) return outcome.code;
  struct Counted : IL::ColorConvertParams, scripted::Live<scripted::Counted::ConverterParams> {};
  auto made = std::make_shared<Counted>();
  made->luminanceCoefficients = Host::Instance().results.luminanceCoefficients;
  params = std::move(made);
  identity.bytes[0] = 1;
  return 0;
}

TransferFunction GetSignalToLinearTransferFn(int transferCharacteristic, int videoColorimetry) {
  return Make("CHR::GetSignalToLinearTransferFn", "SignalToLinear", PQToNits,
              transferCharacteristic, videoColorimetry);
}

TransferFunction GetLinearToSignalTransferFn(int transferCharacteristic, int videoColorimetry) {
  return Make("CHR::GetLinearToSignalTransferFn", "LinearToSignal", NitsToPQ,
              transferCharacteristic, videoColorimetry);
}

}  // namespace CHR
