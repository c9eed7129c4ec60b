#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>

#include "host/ironlane/Kernels.h"

namespace Quillon {

/// The kernels, in the order of `kKernelSignatures`.
enum class KernelId : std::uint8_t {
  GamutCompressionReinhard,
  GamutCompressionDesaturation,
  HuePreservationDesaturation,
  ITU2446A,
  CARToneCurve,
  ITU2390RGBByChannel,
  ITU2390MaxRGB,
};

/// Where one float of a kernel comes from: an entry of the support vector, or one of the tone-map
/// controls.
enum class KernelFloat : std::uint8_t {
  P0,
  P1,
  P2,
  P3,
  P4,
  P5,
  P6,
  P7,
  P8,
  P9,
  P10,
  P11,
  P12,
  Peak,
  PeakGain,
  ColorPreservation,
};

/// Most floats that a kernel takes.
inline constexpr std::size_t kMaxKernelFloats = 11;

/// Name and float arguments of a kernel.
struct KernelSignature {
  std::string_view name;
  std::array<KernelFloat, kMaxKernelFloats> floats{};
  std::size_t floatCount = 0;
  /// How many entries a support vector must have.
  std::size_t paramsRead = 0;

  constexpr KernelSignature(std::string_view kernelName, std::initializer_list<KernelFloat> sources)
      : name(kernelName), floatCount(sources.size()) {
    std::copy(sources.begin(), sources.end(), floats.begin());
    for (const KernelFloat source : sources) {
      if (source <= KernelFloat::P12) {
        paramsRead = std::max(paramsRead, static_cast<std::size_t>(source) + 1);
      }
    }
  }
};

namespace detail {

// Deliberate: P2 before P1 of the hue-preserving kernel, and controls among the parameters. Each
// kernel has an order of its own.
inline constexpr std::array<KernelSignature, 7> kKernelSignatures = [] {
  using enum KernelFloat;
  return std::array<KernelSignature, 7>{{
      {"GamutCompressionKernelReinhard", {P0}},
      {"GamutCompressionKernelDesaturation", {P0, P1, P2}},
      {"ToneMapKernelHuePreservationDesaturationMain", {P0, P2, P1, PeakGain, ColorPreservation}},
      {"ToneMapKernelITU2446A", {PeakGain, ColorPreservation, P0, P1, P2, P3}},
      {"ToneMapKernelCARToneCurve",
       {P0, PeakGain, P1, P2, ColorPreservation, Peak, P3, P4, P5, P6}},
      {"ToneMapKernelITU2390RGBByChannel",
       {P0, P1, P2, P3, PeakGain, ColorPreservation, Peak, P4, P10, P11, P12}},
      {"ToneMapKernelITU2390MaxRGBMain",
       {P0, P1, P2, P3, PeakGain, ColorPreservation, Peak, P4, P10, P11, P12}},
  }};
}();

}  // namespace detail

inline constexpr std::size_t kKernelCount = detail::kKernelSignatures.size();

constexpr const KernelSignature& SignatureOf(KernelId kernel) {
  return detail::kKernelSignatures[static_cast<std::size_t>(kernel)];
}

}  // namespace Quillon
