#include "tonemap/Bt2390.h"

#include <array>
#include <cmath>

#include "base/DefaultFloatingPoint.h"
#include "base/WorkingColorManagement.h"
#include "curves/Bt2390.h"
#include "curves/HighlightDesaturation.h"
#include "host/chromant/Conversion.h"
#include "host/pavix/ColorSpaceUtils.h"
#include "host/pavix/ColorSpaces.h"
#include "tonemap/ColorSpaceMatch.h"
#include "tonemap/GraphicsWhite.h"
#include "tonemap/PQTables.h"
#include "tonemap/PQTransfer.h"
#include "tonemap/PeakLuminance.h"
#include "tonemap/SupportParams.h"

namespace Quillon {

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::ToneMapAlgorithmType;
using PX::ToneMappingUtils::ToneMapSettings;

namespace {

using P = Bt2390Params;

constexpr float kOldPeakSignal = 1.09F;      // super-white of a narrow-range SDR signal
constexpr float kOldHlgPeakSignal = 0.752F;  // PQ code value of 1000 nits
constexpr float kOldReferenceWhite = 1000.0F;

/// Two pixels of four floats: black, then peak.
using BlackAndPeak = std::array<float, 8>;
constexpr std::size_t kBlack = 0;
constexpr std::size_t kPeak = 4;

int ConvertToPQ(const BlackAndPeak& from, BlackAndPeak& to, const ColorSpace& colorSpace,
                const ColorManagementSettings& colorManagement) {
  constexpr int kRowBytes = sizeof(BlackAndPeak);
  return CHR::ConvertFrame(from.data(), to.data(), 2, 1, colorSpace,
                           orvmediatypes::kLinearFloatBGRA, kRowBytes, PX::ColorSpaces::OR2100PQ(),
                           orvmediatypes::kLinearFloatBGRA, kRowBytes, colorManagement);
}

/// The source's and the destination's black and peak, entries 0 to 3. False when a conversion
/// failed.
bool AppendBlacksAndPeaks(const ToneMapSettings& settings, bool colorManaged,
                          SupportVector& params) {
  const float defaultPeak = colorManaged ? 1.0F : kOldPeakSignal;
  const float otherChannels = colorManaged ? 1.0F : 0.0F;
  BlackAndPeak from = {0.0F, 0.0F, 0.0F, 1.0F, defaultPeak, otherChannels, otherChannels, 1.0F};
  BlackAndPeak to = from;

  if (!colorManaged) {
    params.push_back(0.0F);
    params.push_back(PX::ColorSpaceUtils::IsRec2100HLGColorSpace(settings.sourceColorSpace)
                         ? kOldHlgPeakSignal
                         : 1.0F);
  } else {
    if (!MatchesBT2100PQ(settings.sourceColorSpace) &&
        ConvertToPQ(from, to, settings.sourceColorSpace, settings.colorManagementSettings) < 0) {
      return false;
    }
    params.push_back(to[kBlack]);
    params.push_back(to[kPeak]);
  }

  const float peak = GetPeakSignalFromMetaData(settings.destinationColorSpace, defaultPeak);
  // Deliberate: on one channel alone below version 3, though with the record's colour management.
  const std::size_t channels = colorManaged ? 3 : 1;
  for (std::size_t channel = 0; channel < channels; ++channel) {
    from[kPeak + channel] = peak;
    to[kPeak + channel] = peak;
  }
  if (!MatchesBT2100PQ(settings.destinationColorSpace) &&
      ConvertToPQ(from, to, settings.destinationColorSpace, settings.colorManagementSettings) < 0) {
    return false;
  }
  // Deliberate: unconverted, the black is what the source's conversion left there.
  params.push_back(to[kBlack]);
  params.push_back(to[kPeak]);
  return true;
}

float ReferenceWhite(const ToneMapSettings& settings, bool colorManaged) {
  const ColorSpace& destination = settings.destinationColorSpace;
  const bool hasGraphicsWhite = PX::ColorSpaceUtils::IsSDRColorSpace(destination) ||
                                (colorManaged && PX::ColorSpaceUtils::IsHDRColorSpace(destination));
  if (hasGraphicsWhite) return GraphicsWhiteNits(settings.colorManagementSettings);
  return colorManaged ? 1.0F : kOldReferenceWhite;
}

/// A PQ code value in nits.
float DecodePQ(float signal) {
  std::array<float, 3> pixel = {signal, 1.0F, 1.0F};
  if (kPQSignalToLinear) kPQSignalToLinear(pixel.data(), 1.0F);
  return pixel[0];
}

/// Highlights desaturated in linear light, then the EETF on PQ code values.
void ToneMap(Bt2390Form form, float* pixel, const SupportVector& params,
             const ToneMapSettings& settings) {
  DesaturateHighlight(pixel, settings.controls.peakGain, params[P::kKneeStartLight],
                      settings.controls.peak, settings.controls.colorPreservation,
                      params[P::kWeightRed], params[P::kWeightGreen], params[P::kWeightBlue]);
  const float kneeStart = params[P::kKneeStart];
  if (kneeStart >= 1.0F) return;
  ApplyBt2390(form, params.data(), pixel);
}

bool IsCodeValue(float value) { return value >= 0.0F && value <= 1.0F; }

template <class Curve>
ToneMapPixelFunction BindTables(const SupportVector& params) {
  if (!PrepareBt2390(params)) return {};
  return Curve{MakeBt2390Tables(Curve::kForm, params)};
}

}  // namespace

bool PrepareBt2390(const SupportVector& params) {
  constexpr float kTolerance = 1e-15F;
  const float range = params[P::kSourceRange];
  const float kneeStart = params[P::kKneeStart];
  if (range < kTolerance || std::abs(1.0F - kneeStart) < kTolerance) return false;
  // Deliberate: the tables are built here, before a band is queued.
  return WarmPQTables();
}

EetfParams EetfParamsOf(const float* params) {
  return {.sourceBlack = params[P::kSourceBlack],
          .sourceRange = params[P::kSourceRange],
          .kneeStart = params[P::kKneeStart],
          .minLum = params[P::kMinLum],
          .maxLum = params[P::kMaxLum]};
}

double Bt2390CodeValue(const SupportVector& params, double share) {
  const double sourceBlack = params[P::kSourceBlack];
  const double sourceRange = params[P::kSourceRange];
  return sourceBlack + share * sourceRange;
}

void ApplyBt2390(Bt2390Form form, const float* params, float* pixel) {
  const float white = params[P::kReferenceWhite];
  std::array<float, 3> pq = {white * pixel[0], white * pixel[1], white * pixel[2]};
  EncodePQByTable(pq.data());
  if (form == Bt2390Form::MaxRGB) {
    EetfMaxRGB(pq.data(), EetfParamsOf(params));
  } else {
    EetfByChannel(pq.data(), EetfParamsOf(params));
  }
  DecodePQByTable(pq.data());
  for (std::size_t channel = 0; channel < pq.size(); ++channel)
    pixel[channel] = pq[channel] / white;
}

std::shared_ptr<const Bt2390Tables> MakeBt2390Tables(Bt2390Form form, const SupportVector& params) {
  const DefaultFloatingPoint mode;
  const EetfParams curve = EetfParamsOf(params.data());
  if (curve.kneeStart >= 1.0F) return nullptr;
  const float white = params[P::kReferenceWhite];
  const auto tables =
      std::allocate_shared<Bt2390Tables>(orvcore::allocator::STLAllocator<Bt2390Tables>());
  tables->params = params;
  tables->hostEncodesAsSt2084 = HostEncodesAsSt2084();
  tables->decoded.reserve(PQDecodeTable().size());
  for (const float nits : PQDecodeTable()) tables->decoded.push_back(nits / white);
  if (form == Bt2390Form::ByChannel) {
    tables->mapped.reserve(PQEncodeTable().size());
  } else {
    tables->encoded.reserve(PQEncodeTable().size());
    tables->ratio.reserve(PQEncodeTable().size());
  }
  for (const float pq : PQEncodeTable()) {
    if (form == Bt2390Form::ByChannel) {
      const float mapped = EetfOfChannel(pq, curve);
      if (!IsCodeValue(mapped)) return nullptr;
      tables->mapped.push_back(tables->decoded[PQDecodeIndex(mapped)]);
    } else {
      const float lifted = LiftSourceBlack(pq, curve);
      const float ratio = EetfRatio(lifted, curve);
      if (!IsCodeValue(lifted) || !IsCodeValue(ratio)) return nullptr;
      tables->encoded.push_back(lifted);
      tables->ratio.push_back(ratio);
    }
  }
  return tables;
}

ToneMapPixelFunction Bt2390MaxRGBToneMap::Bind(const SupportVector& params) {
  return BindTables<Bt2390MaxRGBToneMap>(params);
}

ToneMapPixelFunction Bt2390RGBByChannelToneMap::Bind(const SupportVector& params) {
  return BindTables<Bt2390RGBByChannelToneMap>(params);
}

void Bt2390MaxRGBToneMap::operator()(float* pixel, const SupportVector& params,
                                     const ToneMapSettings& settings) const {
  ToneMap(kForm, pixel, params, settings);
}

void Bt2390RGBByChannelToneMap::operator()(float* pixel, const SupportVector& params,
                                           const ToneMapSettings& settings) const {
  ToneMap(kForm, pixel, params, settings);
}

void GetITU2390SupportParams(ToneMapSettings& settings, SupportVector& params) {
  const bool colorManaged = settings.controls.GetVersion() >= kColorManagedVersion;
  params.clear();
  params.reserve(GetToneMappingSupportParamsSize(ToneMapAlgorithmType::ITU2390MaxRGB));
  if (!AppendBlacksAndPeaks(settings, colorManaged, params)) return;

  const float referenceWhite = ReferenceWhite(settings, colorManaged);
  params.push_back(referenceWhite);

  const EetfParams curve =
      MakeEetfParams(params[P::kSourceBlack], params[P::kSourcePeak], params[P::kDestinationBlack],
                     params[P::kDestinationPeak]);
  params.push_back(curve.sourceRange);
  params.push_back(curve.minLum);
  params.push_back(curve.maxLum);
  params.push_back(curve.kneeStart);
  params.push_back(DecodePQ(curve.kneeStart) / referenceWhite);

  for (const float weight : GetDestinationLuminanceWeights(settings.destinationColorSpace,
                                                           settings.colorManagementSettings)) {
    params.push_back(weight);
  }
}

}  // namespace Quillon
