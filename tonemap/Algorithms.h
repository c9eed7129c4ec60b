#pragma once

#include "base/CurveList.h"
#include "tonemap/Bt2390.h"
#include "tonemap/Bt2446A.h"
#include "tonemap/CarToneCurve.h"
#include "tonemap/HuePreservation.h"
#include "tonemap/ToneCurve.h"

namespace Quillon {

/// The tone curves, in the order of their algorithms' values. Every choice by algorithm reads this.
using ToneCurves = CurveList<Bt2390MaxRGBToneMap, Bt2390RGBByChannelToneMap, Bt2446AToneMap,
                             HuePreservationToneMap, CARToneMap>;

/// What is told of each, in the same order.
inline constexpr auto kToneCurves = FactsOf(ToneCurves{});

/// What is told of an algorithm's curve, or null for a value that names none (the automatic choice
/// among them).
constexpr const ToneCurveFacts* FindToneCurve(
    orvmediatypes::color::ToneMapAlgorithmType algorithmType) {
  return FindFacts(kToneCurves, algorithmType);
}

/// The algorithm whose support parameters a request gets: for the automatic choice the
/// hue-preserving one.
constexpr orvmediatypes::color::ToneMapAlgorithmType AlgorithmOfParams(
    orvmediatypes::color::ToneMapAlgorithmType algorithmType) {
  using enum orvmediatypes::color::ToneMapAlgorithmType;
  return algorithmType == Automatic ? HuePreservationDesaturation : algorithmType;
}

/// A tone curve, ready to be called.
struct ToneMapAlgorithm {
  const ToneCurveFacts& facts;
  ToneMapParamsBuilder buildParams;
  ToneMapPixelFunction curve;
  /// The curve with what it needs for all pixels of a frame with these parameters; empty when they
  /// are degenerate. Null where the curve needs nothing and takes any parameters.
  ToneMapPixelFunction (*bind)(const SupportVector& params);
};

/// The algorithm's entry, or null for a value that names none (the automatic choice among them).
const ToneMapAlgorithm* FindToneMapAlgorithm(
    orvmediatypes::color::ToneMapAlgorithmType algorithmType);

}  // namespace Quillon
