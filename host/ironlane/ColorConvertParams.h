#pragma once

#include <array>

namespace IL {

/// Parameters of a colour conversion, as far as the engine reads them.
struct ColorConvertParams {
  /// Luminance of the red, green and blue primaries at unit signal; they add up to 1.
  std::array<float, 3> luminanceCoefficients{};
};

}  // namespace IL
