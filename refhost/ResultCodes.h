#pragma once

namespace RefHost {

/// A pixel format, colour space, matrix or chroma location that is not known here.
inline constexpr int kNotSupported = static_cast<int>(0xA00F000CU);
/// Null pixels, handles that are not usable, sizes that do not fit, rows shorter than their pixels,
/// frames that cannot be made.
inline constexpr int kInvalidFrame = static_cast<int>(0xA00F000EU);

/// The device refused, failed or is gone; the trace holds what its driver said.
inline constexpr int kDeviceFailed = static_cast<int>(0xA00F0010U);
/// The device has no memory left.
inline constexpr int kOutOfDeviceMemory = static_cast<int>(0xA00F0011U);
/// A kernel or arguments that do not belong together or to the device, or sizes that are no sizes.
inline constexpr int kInvalidLaunch = static_cast<int>(0xA00F0012U);
/// The device failed in a way that it does not survive, now or before. Only a device opened anew
/// may work; all memory of this one is lost.
inline constexpr int kDeviceLost = static_cast<int>(0xA00F0013U);

}  // namespace RefHost
