#pragma once

#include <array>
#include <cstddef>
#include <memory>

#include "base/SupportVector.h"
#include "curves/Bt2390.h"
#include "host/pavix/ToneMappingUtils.h"
#include "tonemap/ToneCurve.h"

namespace Quillon {

/// Support parameters of both BT.2390 curves (Report ITU-R BT.2390-11, 5.4).
struct Bt2390Params {
  enum Entry : std::size_t {
    kSourceBlack,
    kSourcePeak,
    kDestinationBlack,
    kDestinationPeak,
    kReferenceWhite,  ///< or 1.0
    kSourceRange,     ///< source peak less source black
    kMinLum,
    kMaxLum,
    kKneeStart,
    kKneeStartLight,
    kWeightRed,
    kWeightGreen,
    kWeightBlue,
  };
  static constexpr std::array<ParamEntry, 13> kEntries = {
      {{"sourceBlack", "source black", Unit::PQCode},
       {"sourcePeak", "source peak", Unit::PQCode},
       {"destinationBlack", "destination black", Unit::PQCode},
       {"destinationPeak", "destination peak", Unit::PQCode},
       {"referenceWhite", "reference white", Unit::Nits},
       {"sourceRange", "source range", Unit::PQCode},
       {"minLum", "normalised destination black, minLum", Unit::PQShare},
       {"maxLum", "normalised destination peak, maxLum", Unit::PQShare},
       {"kneeStart", "knee start KS", Unit::PQShare},
       {"kneeStartLight", "knee start over reference white", Unit::Linear},
       {"weightRed", "red luminance weight"},
       {"weightGreen", "green luminance weight"},
       {"weightBlue", "blue luminance weight"}}};
};

/// A conversion that fails ends the vector early, with 0 or 2 entries.
void GetITU2390SupportParams(PX::ToneMappingUtils::ToneMapSettings& settings,
                             SupportVector& params);

/// Whether the curves can run on these parameters: the source has a range and the knee starts below
/// its peak. Readies the PQ tables on this thread when they can.
bool PrepareBt2390(const SupportVector& params);

/// What the EETF is applied to: the largest of red, green and blue, or each.
enum class Bt2390Form { MaxRGB, ByChannel };

/// Everything that the two PQ tables can lead a curve to: for each whole number of nits, 0 to 9999,
/// what becomes of it, and for each entry of the decoding table its light. Light is 1.0 at
/// reference white. Built for one vector of parameters, read by many threads. All of its memory is
/// the host's recycler's.
struct Bt2390Tables {
  SupportVector params;   ///< what the tables were built for
  SupportVector mapped;   ///< by channel, by nits: the result
  SupportVector encoded;  ///< MaxRGB, by nits: PQ code value, lifted from source black
  SupportVector ratio;    ///< MaxRGB, by nits: what a pixel with this largest channel is scaled by
  SupportVector decoded;  ///< by code value in steps of 1/8191: the light
  bool hostEncodesAsSt2084 = false;  ///< light beyond the tables need not go through the host
};

/// Null when the curve does not run (a knee at or above the source's peak), or when these
/// parameters lead it to code values outside [0, 1], which the decoding table does not have: then
/// the curve has no row form. Once a call, before there are threads.
std::shared_ptr<const Bt2390Tables> MakeBt2390Tables(Bt2390Form form, const SupportVector& params);

/// PQ code value of a share of the source's range.
double Bt2390CodeValue(const SupportVector& params, double share);

/// What the EETF reads of the support parameters.
EetfParams EetfParamsOf(const float* params);

/// The EETF on a pixel whose highlights have been desaturated, in place. `params` are all support
/// parameters.
void ApplyBt2390(Bt2390Form form, const float* params, float* pixel);

/// What is told of both curves alike. Deliberate: the kernels take their controls among the
/// parameters, and not those from the source's range to the knee, which they compute.
constexpr ToneCurveFacts Bt2390Facts(orvmediatypes::color::ToneMapAlgorithmType type,
                                     std::string_view id, std::string_view name,
                                     std::string_view kernel) {
  using P = Bt2390Params;
  return {
      .type = type,
      .id = id,
      .name = name,
      .entries = P::kEntries,
      .declaredParams = 13,
      .knee = Knee{.entry = P::kKneeStart, .isSetting = false},
      .peakUnit = Unit::Linear,
      .rowForm = RowForm::Tiles,
      .kernel = {kernel,
                 {P::kSourceBlack, P::kSourcePeak, P::kDestinationBlack, P::kDestinationPeak,
                  KernelControl::PeakGain, KernelControl::ColorPreservation, KernelControl::Peak,
                  P::kReferenceWhite, P::kWeightRed, P::kWeightGreen, P::kWeightBlue}}};
}

/// The EETF on the largest of red, green and blue, bound to its parameters. Its tables, where it
/// has any, speed up rows and change no result.
struct Bt2390MaxRGBToneMap {
  static constexpr Bt2390Form kForm = Bt2390Form::MaxRGB;
  static constexpr ToneCurveFacts kFacts =
      Bt2390Facts(orvmediatypes::color::ToneMapAlgorithmType::ITU2390MaxRGB, "bt2390-maxrgb",
                  "BT.2390 (maximum of RGB)", "ToneMapKernelITU2390MaxRGBMain");
  static constexpr ToneMapParamsBuilder kBuildParams = GetITU2390SupportParams;
  static ToneMapPixelFunction Bind(const SupportVector& params);

  std::shared_ptr<const Bt2390Tables> tables;
  void operator()(float* pixel, const SupportVector& params,
                  const PX::ToneMappingUtils::ToneMapSettings& settings) const;
};

/// The EETF on each channel, likewise.
struct Bt2390RGBByChannelToneMap {
  static constexpr Bt2390Form kForm = Bt2390Form::ByChannel;
  static constexpr ToneCurveFacts kFacts =
      Bt2390Facts(orvmediatypes::color::ToneMapAlgorithmType::ITU2390RGBByChannel, "bt2390-rgb",
                  "BT.2390 (each channel)", "ToneMapKernelITU2390RGBByChannel");
  static constexpr ToneMapParamsBuilder kBuildParams = GetITU2390SupportParams;
  static ToneMapPixelFunction Bind(const SupportVector& params);

  std::shared_ptr<const Bt2390Tables> tables;
  void operator()(float* pixel, const SupportVector& params,
                  const PX::ToneMappingUtils::ToneMapSettings& settings) const;
};

}  // namespace Quillon
