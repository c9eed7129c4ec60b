#include "tonemap/PeakLuminance.h"

#include <array>

#include "base/Trace.h"
#include "base/WorkingColorManagement.h"
#include "host/chromant/Conversion.h"
#include "host/pavix/ColorSpaceUtils.h"
#include "host/pavix/ColorSpaces.h"
#include "tonemap/Algorithms.h"
#include "tonemap/ColorSpaceMatch.h"
#include "tonemap/PQTransfer.h"

namespace Quillon {

using orvmediatypes::kLinearFloatBGRA;
using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

namespace {

using Pixel = std::array<float, 4>;

int ConvertOnePixel(Pixel& pixel, const ColorSpace& from, const ColorSpace& to, int rowBytes,
                    const ColorManagementSettings& colorManagement) {
  return CHR::ConvertFrame(pixel.data(), pixel.data(), 1, 1, from, kLinearFloatBGRA, rowBytes, to,
                           kLinearFloatBGRA, rowBytes, colorManagement);
}

}  // namespace

float AdjustedPeakBasedOnInputColorSpace(const PX::ToneMappingUtils::ToneMapSettings& settings) {
  const ToneCurveFacts* curve = FindToneCurve(settings.algorithmType);
  // Deliberate: in nits, whatever the colour spaces, an empty source among them.
  if (curve != nullptr && curve->peakUnit == Unit::Nits) {
    return PX::ToneMappingUtils::ConvertPeakLinearSignalToLuminance(settings);
  }
  if (settings.sourceColorSpace.empty()) {
    TraceFailure([](auto& message) {
      message << "AdjustedPeakBasedOnInputColorSpace : Src Color Space is empty";
    });
    return 1.0F;
  }
  // Deliberate: default colour management, whatever the record holds.
  if (settings.controls.GetVersion() < kColorManagedVersion) {
    return CHR::ConvertSignalToLinearValue(settings.sourceColorSpace, ColorManagementSettings(),
                                           settings.controls.peak);
  }
  return ConvertPeakSignalToLinear(settings.sourceColorSpace, settings.destinationColorSpace,
                                   settings.colorManagementSettings, settings.controls.peak);
}

float ConvertPeakSignalToLinear(const ColorSpace& source, const ColorSpace& destination,
                                const ColorManagementSettings& colorManagement, float signal) {
  constexpr int kSingleRowBytes = 1;  // Deliberate: a single row has no pitch.
  Pixel pixel = {signal, signal, signal, 0.0F};
  if (ConvertOnePixel(pixel, source, destination, kSingleRowBytes, colorManagement) < 0) {
    return signal;
  }
  const ColorSpace linear = CHR::ORVColorSpaceToEquivalentLinearColorSpace(destination);
  if (ConvertOnePixel(pixel, destination, linear, kSingleRowBytes, colorManagement) < 0) {
    return signal;
  }
  return pixel[0];
}

float GetPeakSignalFromMetaData(const ColorSpace& colorSpace, float defaultSignal) {
  int nits = -1;
  if (!PX::ColorSpaceUtils::GetIfExistsPeakLuminanceFromColorSpaceMetaData(colorSpace, nits)) {
    return defaultSignal;
  }
  const auto peak = static_cast<float>(nits);
  Pixel pixel = {peak, peak, peak, 0.0F};
  const CHR::TransferFunction encode = ObtainPQLinearToSignal();
  if (!encode) return defaultSignal;
  encode(pixel.data(), 1.0F);
  if (MatchesBT2100PQ(colorSpace)) return pixel[0];

  // Deliberate: default colour management, whatever the record and its version.
  const int result = ConvertOnePixel(pixel, PX::ColorSpaces::OR2100PQ(), colorSpace, sizeof(Pixel),
                                     ColorManagementSettings());
  return result < 0 ? defaultSignal : pixel[0];
}

}  // namespace Quillon
