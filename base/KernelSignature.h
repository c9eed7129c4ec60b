#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>

#include "host/ironlane/Kernels.h"

namespace Quillon {

/// The tone-map controls that kernels take.
enum class KernelControl : std::uint8_t { Peak, PeakGain, ColorPreservation };

/// Where one float of a kernel comes from: a control, or else an entry of the support vector.
struct KernelFloat {
  std::size_t entry = 0;
  std::optional<KernelControl> control;

  constexpr KernelFloat() = default;
  constexpr KernelFloat(std::size_t vectorEntry) : entry(vectorEntry) {}
  constexpr KernelFloat(KernelControl kernelControl) : control(kernelControl) {}
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
    for (const KernelFloat& source : sources) {
      if (!source.control) paramsRead = std::max(paramsRead, source.entry + 1);
    }
  }
};

}  // namespace Quillon
