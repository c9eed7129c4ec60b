#include "tonemap/Bt2446A.h"

#include <array>

#include "curves/Bt2446A.h"
#include "host/chromant/Conversion.h"
#include "host/pavix/ColorSpaceUtils.h"
#include "host/pavix/ColorSpaces.h"
#include "tonemap/ColorSpaceMatch.h"
#include "tonemap/GraphicsWhite.h"
#include "tonemap/SupportParams.h"

namespace Quillon {

using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::ToneMapAlgorithmType;
using PX::ToneMappingUtils::ToneMapSettings;

namespace {

// Deliberate: 0.4166 and not 1 / 2.4.
constexpr float kEncodingExponent = 0.4166F;

float Rho(float peakNits) { return 1.0F + 32.0F * Power(peakNits * 0.0001F, kEncodingExponent); }

float ReferenceWhite(const ToneMapSettings& settings) {
  const ColorSpace& destination = settings.destinationColorSpace;
  if (!PX::ColorSpaceUtils::IsSDRColorSpace(destination) &&
      !PX::ColorSpaceUtils::IsHDRColorSpace(destination)) {
    return 1.0F;
  }
  return GraphicsWhiteNits(settings.colorManagementSettings);
}

/// The destination's full-scale white as a PQ code value; 1 when the conversion fails.
float FullScaleInPQ(const ToneMapSettings& settings) {
  std::array<float, 4> pixel = {1.0F, 1.0F, 1.0F, 1.0F};
  if (!MatchesBT2100PQ(settings.destinationColorSpace)) {
    // Deliberate: the record's colour management in every version, and a failure is no failure.
    CHR::ConvertFrame(pixel.data(), pixel.data(), 1, 1, settings.destinationColorSpace,
                      orvmediatypes::kLinearFloatBGRA, sizeof(pixel), PX::ColorSpaces::OR2100PQ(),
                      orvmediatypes::kLinearFloatBGRA, sizeof(pixel),
                      settings.colorManagementSettings);
  }
  return pixel[0];
}

}  // namespace

void Bt2446AToneMap::operator()(float* pixel, const SupportVector& params,
                                const ToneMapSettings& settings) const {
  using P = Bt2446AParams;
  ToneMapBt2446A(pixel, settings.controls.peakGain, params[P::kRhoHdr], params[P::kRhoSdr],
                 params[P::kInputScale], params[P::kOutputScale],
                 settings.controls.colorPreservation);
}

void GetITU2446ASupportParams(ToneMapSettings& settings, SupportVector& params) {
  params.clear();
  params.reserve(GetToneMappingSupportParamsSize(ToneMapAlgorithmType::ITU2446A));
  const float referenceWhite = ReferenceWhite(settings);
  const float fullScale = FullScaleInPQ(settings);

  const float hdrPeak = settings.controls.peak;
  auto sdrPeak =
      static_cast<float>(PX::ColorSpaceUtils::GetPeakLuminance(settings.destinationColorSpace));
  if (sdrPeak == -1.0F) {
    sdrPeak = CHR::ConvertSignalToLinearValue(PX::ColorSpaces::OR2100PQ(),
                                              settings.colorManagementSettings, fullScale) *
              referenceWhite;
  }

  params.push_back(Rho(hdrPeak));
  params.push_back(Rho(sdrPeak));
  params.push_back(Power(hdrPeak / sdrPeak, kEncodingExponent) * (referenceWhite / hdrPeak));
  params.push_back(sdrPeak / referenceWhite);
}

}  // namespace Quillon
