#pragma once

namespace CHR {

/// A colour space or pixel format that is not known here.
inline constexpr int kNotSupported = static_cast<int>(0xA00F000CU);
/// Null pixels, sizes that are not positive, rows shorter than their pixels.
inline constexpr int kInvalidArgument = static_cast<int>(0xA00F000EU);

}  // namespace CHR
