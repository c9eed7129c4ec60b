#pragma once

#include <cstddef>
#include <functional>

#include "base/KernelSignatures.h"
#include "base/SupportVector.h"
#include "host/pavix/ToneMappingUtils.h"

namespace Quillon {

/// Tone maps one pixel of four floats in place: linear light, 1.0 at reference white, blue, green
/// and red changed and alpha not. The parameter vector is that of `GetToneMappingSupportParams`.
using ToneMapPixelFunction =
    std::function<void(float* pixel, const SupportVector& params,
                       const PX::ToneMappingUtils::ToneMapSettings& settings)>;

/// What the engine knows of one tone-map algorithm. Every choice by algorithm reads this table.
struct ToneMapAlgorithm {
  orvmediatypes::color::ToneMapAlgorithmType type;
  /// Declared length of the support parameters: what the size query answers.
  int paramsSize;
  /// How many of them the curve reads.
  std::size_t paramsRead;
  /// Fills the support parameters.
  void (*buildParams)(PX::ToneMappingUtils::ToneMapSettings& settings, SupportVector& params);
  ToneMapPixelFunction curve;
  /// The curve with what it needs for all pixels of a frame with these parameters; empty when they
  /// are degenerate. Null where the curve needs nothing and takes any parameters.
  ToneMapPixelFunction (*bind)(const SupportVector& params);
  /// The same curve on a GPU.
  KernelId kernel;
};

/// The algorithm's entry, or null for a value that names none (the automatic choice among them).
const ToneMapAlgorithm* FindToneMapAlgorithm(
    orvmediatypes::color::ToneMapAlgorithmType algorithmType);

}  // namespace Quillon
