#pragma once

namespace Quillon {

/// Results are signed 32-bit numbers: 0 is success, negative is failure. A failure that a host
/// call returned is passed on unchanged; these are the engine's own.
enum ResultCode : int {
  kSuccess = 0,
  /// A GPU kernel could not be loaded.
  kKernelNotLoaded = static_cast<int>(0xA00F0001U),
  /// Places, bounds, pixel format or algorithm are not supported in this combination.
  kNotSupported = static_cast<int>(0xA00F000CU),
  /// A frame handle is not usable, or formats, bounds or pixel pointers do not fit.
  kInvalidFrame = static_cast<int>(0xA00F000EU),
  /// The support parameters are degenerate or too few for their curve.
  kDegenerateParameters = static_cast<int>(0xA00F000FU),
};

/// Length of the support parameters of an algorithm that does not exist.
inline constexpr int kUnknownAlgorithmSize = -1;

}  // namespace Quillon
