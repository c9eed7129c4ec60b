#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string_view>

#include "base/KernelSignature.h"
#include "base/SupportVector.h"
#include "host/pavix/ToneMappingUtils.h"

namespace Quillon {

/// Tone maps one pixel of four floats in place: linear light, 1.0 at reference white, blue, green
/// and red changed and alpha not. The parameter vector is that of `GetToneMappingSupportParams`.
using ToneMapPixelFunction =
    std::function<void(float* pixel, const SupportVector& params,
                       const PX::ToneMappingUtils::ToneMapSettings& settings)>;

/// Fills the support parameters.
using ToneMapParamsBuilder = void (*)(PX::ToneMappingUtils::ToneMapSettings& settings,
                                      SupportVector& params);

/// Where a curve leaves the straight line.
struct Knee {
  /// Entry of the support vector, in that entry's unit.
  std::size_t entry;
  /// Whether the settings' knee sets it; else the two peaks do.
  bool isSetting;
};

/// How a curve goes over rows of pixels.
enum class RowForm : std::uint8_t {
  Vectors,  ///< its `MapPixel` on vectors of pixels
  Tiles,    ///< its `TileForm` of cpu/rows, in stages over tiles of pixels
};

/// What is told of a tone curve: in the curve's own header, and nowhere else. Plain data, which
/// needs nothing of the engine linked.
struct ToneCurveFacts {
  orvmediatypes::color::ToneMapAlgorithmType type;
  std::string_view id;    ///< as options and documentation call it
  std::string_view name;  ///< for people
  /// The support parameters.
  std::span<const ParamEntry> entries;
  /// Declared length of the support parameters: what the size query answers.
  int declaredParams;
  std::optional<Knee> knee;
  /// What the settings' peak becomes before the parameters are computed.
  Unit peakUnit;
  RowForm rowForm;
  /// The same curve on a GPU.
  KernelSignature kernel;
};

}  // namespace Quillon
