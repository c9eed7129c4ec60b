#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "host/pavix/IVideoFrame.h"
#include "refhost/ironlane/GPUDevice.h"

/// Blue, green, red and alpha.
using Pixel = std::array<float, 4>;
using Pixels = std::vector<Pixel>;

/// A frame on the device, contents undefined; not usable when it cannot be made.
PX::VideoFrameRef MakeGPUFrame(const std::shared_ptr<RefHost::GPUDevice>& device,
                               orvmediatypes::PixelFormat format, int width, int height,
                               const orvmediatypes::color::ColorSpace& colorSpace);

/// A frame in system memory with these pixels, in float or rounded to half.
PX::VideoFrameRef MakeSystemFrame(orvmediatypes::PixelFormat format, int width, int height,
                                  const orvmediatypes::color::ColorSpace& colorSpace,
                                  const Pixels& pixels);

/// A frame on the device with the pixels of one in system memory.
PX::VideoFrameRef OnGPU(const std::shared_ptr<RefHost::GPUDevice>& device,
                        const PX::VideoFrameRef& frame);

/// The pixels of a float or half frame, wherever it is.
Pixels PixelsOf(const PX::VideoFrameRef& frame);

/// Linear light as pictures have it, with every combination of special values in the three channels
/// as far as there is room: not a number, infinities, zeros, subnormals, thresholds, huge values.
Pixels NotablePixels(int width, int height, unsigned seed);

/// Rounded to half and back.
Pixels RoundedToHalf(Pixels pixels);

/// Expects the same bits in every float, where any NaN is as good as another.
void ExpectSameBits(const Pixels& actual, const Pixels& expected);

/// Expects of a device's results the bits of the processor; of a device whose arithmetic is not
/// exact only that channels lie within a ten-thousandth of the pixel's largest, in pixels of
/// ordinary numbers. A failure names the device.
void ExpectComputed(const RefHost::GPUDevice& device, const Pixels& actual, const Pixels& expected);
