#pragma once

#include <array>

namespace IL {

/// Parameters of a colour conversion, as far as the engine reads them. Made by
/// `CHR::GetColorConverterParamsForColorSpace`, which shares their ownership with the engine until
/// it has read them, once a frame; not changed from then on. A host may derive from this.
struct ColorConvertParams {
  /// Luminance of the red, green and blue primaries of the colour space at unit signal, in this
  /// order: 0.2126, 0.7152 and 0.0722 for ITU-R BT.709. They add up to 1. The engine takes them as
  /// they are.
  std::array<float, 3> luminanceCoefficients{};
};

}  // namespace IL
