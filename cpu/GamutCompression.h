#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <span>
#include <string_view>

#include "base/CurveList.h"
#include "base/KernelSignature.h"
#include "base/SupportVector.h"
#include "curves/GamutDesaturation.h"
#include "curves/GamutReinhard.h"
#include "host/pavix/GamutMappingUtils.h"

namespace Quillon {

/// Compresses the gamut of one pixel of four floats in place. The parameter vector is that of
/// `GetGamutCompressionSupportParams`; blue, green and red are changed, alpha is not.
using GamutCompressionPixelFunction =
    std::function<void(float* pixel, const SupportVector& params,
                       const PX::GamutMappingUtils::GamutCompressionSettings& settings)>;

/// What is told of a gamut compression: at its function below, and nowhere else. Plain data.
struct GamutCurveFacts {
  orvmediatypes::color::GamutCompressionAlgorithmType type;
  std::string_view id;    ///< as options and documentation call it
  std::string_view name;  ///< for people
  /// The parameters.
  std::span<const ParamEntry> entries;
  /// The same curve on a GPU.
  KernelSignature kernel;
};

struct GamutReinhardParams {
  enum Entry : std::size_t { kLimit };
  static constexpr std::array<ParamEntry, 1> kEntries = {
      {{"limit", "source's full scale in light of the destination", Unit::Linear}}};
};

/// Algorithm 1.
struct GamutCompressionReinhard {
  static constexpr GamutCurveFacts kFacts = {
      .type = orvmediatypes::color::GamutCompressionAlgorithmType::Reinhard,
      .id = "reinhard",
      .name = "Reinhard",
      .entries = GamutReinhardParams::kEntries,
      .kernel = {"GamutCompressionKernelReinhard", {GamutReinhardParams::kLimit}}};

  /// Whether any pixel is changed: with a limit above 1. Not a number is no limit.
  static bool HasLimit(const SupportVector& params) {
    return params[GamutReinhardParams::kLimit] > 1.0F;
  }

  void operator()(float* pixel, const SupportVector& params,
                  const PX::GamutMappingUtils::GamutCompressionSettings& settings) const;
};

/// The weights are the destination's.
struct GamutDesaturationParams {
  enum Entry : std::size_t { kWeightRed, kWeightGreen, kWeightBlue };
  static constexpr std::array<ParamEntry, 3> kEntries = {{{"weightRed", "red luminance weight"},
                                                          {"weightGreen", "green luminance weight"},
                                                          {"weightBlue", "blue luminance weight"}}};
};

/// Algorithm 2.
struct GamutCompressionDesaturation {
  static constexpr GamutCurveFacts kFacts = {
      .type = orvmediatypes::color::GamutCompressionAlgorithmType::Desaturation,
      .id = "desaturate",
      .name = "Desaturation",
      .entries = GamutDesaturationParams::kEntries,
      .kernel = {"GamutCompressionKernelDesaturation",
                 {GamutDesaturationParams::kWeightRed, GamutDesaturationParams::kWeightGreen,
                  GamutDesaturationParams::kWeightBlue}}};

  void operator()(float* pixel, const SupportVector& params,
                  const PX::GamutMappingUtils::GamutCompressionSettings& settings) const;
};

/// The curves on one pixel, or on a vector of them.
QUILLON_CURVE void MapPixel(const GamutCompressionReinhard& /*curve*/, Real* pixel,
                            const float* params) {
  CompressGamutReinhard(pixel, params[GamutReinhardParams::kLimit]);
}
QUILLON_CURVE void MapPixel(const GamutCompressionDesaturation& /*curve*/, Real* pixel,
                            const float* params) {
  using P = GamutDesaturationParams;
  CompressGamutDesaturation(pixel, params[P::kWeightRed], params[P::kWeightGreen],
                            params[P::kWeightBlue]);
}

/// The gamut compressions, in the order of their algorithms' values.
using GamutCurves = CurveList<GamutCompressionReinhard, GamutCompressionDesaturation>;

/// What is told of each, in the same order.
inline constexpr auto kGamutCurves = FactsOf(GamutCurves{});

/// What is told of an algorithm's curve, or null for a value that names none.
constexpr const GamutCurveFacts* FindGamutCurve(
    orvmediatypes::color::GamutCompressionAlgorithmType algorithmType) {
  return FindFacts(kGamutCurves, algorithmType);
}

/// Fills the parameter vector of the settings' algorithm. 0, or 0xA00F000C and an empty vector for
/// an algorithm that does not exist.
int GetGamutCompressionSupportParams(const PX::GamutMappingUtils::GamutMappingSettings& settings,
                                     SupportVector& params);

/// Length of an algorithm's parameter vector: 1, 3, or -1 for one that does not exist.
/// Deliberate: a part of the interface that no path of the engine calls.
int GetGamutCompressionSupportParamsSize(
    orvmediatypes::color::GamutCompressionAlgorithmType algorithmType);

}  // namespace Quillon
