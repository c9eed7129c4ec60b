#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "host/pavix/IVideoFrame.h"

inline constexpr int kWidth = 3840;
inline constexpr int kHeight = 2160;
inline constexpr double kPixels = static_cast<double>(kWidth) * kHeight;

/// BT.2020 or BT.709 primaries with an H.273 transfer and a peak in whole nits.
orvmediatypes::color::ColorSpace Bt2020(std::uint8_t transfer, int peakNits);
orvmediatypes::color::ColorSpace Bt709(std::uint8_t transfer, int peakNits);

/// A 4K frame, contents undefined. Throws std::runtime_error.
PX::VideoFrameRef Make4kFrame(orvmediatypes::PixelFormat format,
                              const orvmediatypes::color::ColorSpace& colorSpace);

/// The components of a linear float BGRA frame with packed rows, valid while the frame lives.
std::span<float> FloatsOf(const PX::VideoFrameRef& frame);

/// Throws std::runtime_error for a negative result code.
void Check(int result, const char* operation);
