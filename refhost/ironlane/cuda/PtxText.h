#pragma once

#include <optional>
#include <string_view>

namespace RefHost {

/// A version or a compute capability, "8.0".
struct MajorMinor {
  int major = 0;
  int minor = 0;

  friend auto operator<=>(const MajorMinor&, const MajorMinor&) = default;
};

/// What a text of PTX asks for: the CUDA version of a driver, and the device's compute capability.
struct PtxNeeds {
  MajorMinor driver;
  MajorMinor capability;
};

/// Nothing where the text does not say. For PTX since version 7.0.
std::optional<PtxNeeds> NeedsOf(std::string_view ptx);

}  // namespace RefHost
