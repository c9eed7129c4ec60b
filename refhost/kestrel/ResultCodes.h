#pragma once

namespace KS {

/// A pixel format, colour space, matrix or chroma location that is not known here.
inline constexpr int kNotSupported = static_cast<int>(0xA00F000CU);
/// Handles that are not usable, sizes that do not fit, frames that cannot be made.
inline constexpr int kInvalidFrame = static_cast<int>(0xA00F000EU);

}  // namespace KS
