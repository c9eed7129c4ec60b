#pragma once

#include <array>
#include <functional>

#include "host/pavix/IVideoFrame.h"

/// Red, green and blue.
using Rgb = std::array<float, 3>;

/// A float frame in full-range RGB of the given H.273 primaries and transfer.
PX::VideoFrameRef MakeTestFrame(int width, int height, std::uint8_t primaries,
                                std::uint8_t transfer,
                                const std::function<Rgb(int x, int y)>& pixel);

void SetTestPixel(const PX::VideoFrameRef& frame, int x, int y, const Rgb& rgb);
