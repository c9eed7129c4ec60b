#include "tests/devices/DeviceFrames.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "curves/HalfFloat.h"
#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameManipulators.h"
#include "refhost/kestrel/FrameView.h"
#include "refhost/kestrel/GPUFrame.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/SystemFrame.h"

using orvmediatypes::PixelFormat;
using orvmediatypes::color::ColorSpace;

namespace {

PX::VideoFrameRef MakeLike(const PX::VideoFrameRef& frame) {
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  PX::VideoFrameRef made;
  EXPECT_EQ(RefHost::CreateSystemFrame(made, {.format = frame->GetPixelFormat(),
                                              .width = bounds.width,
                                              .height = bounds.height,
                                              .colorSpace = frame->GetColorSpace()}),
            0);
  return made;
}

void Store(const Pixel& pixel, PixelFormat format, std::byte* place) {
  for (std::size_t c = 0; c < pixel.size(); ++c) {
    if (format == RefHost::kBgraFloat) {
      std::memcpy(place + 4 * c, &pixel[c], sizeof(float));
    } else {
      const auto half = static_cast<std::uint16_t>(ToHalf(pixel[c]));
      std::memcpy(place + 2 * c, &half, sizeof(half));
    }
  }
}

Pixel Load(PixelFormat format, const std::byte* place) {
  Pixel pixel{};
  for (std::size_t c = 0; c < pixel.size(); ++c) {
    if (format == RefHost::kBgraFloat) {
      std::memcpy(&pixel[c], place + 4 * c, sizeof(float));
    } else {
      std::uint16_t half = 0;
      std::memcpy(&half, place + 2 * c, sizeof(half));
      pixel[c] = FromHalf(half);
    }
  }
  return pixel;
}

/// Calls `visit` with the place of every pixel of a frame in system memory, row by row.
template <class Visit>
void ForEachPlace(const PX::VideoFrameRef& frame, Visit visit) {
  RefHost::FrameView view;
  ASSERT_EQ(RefHost::ViewFrame(frame, view), 0);
  const std::ptrdiff_t bytes = view.format == RefHost::kBgraFloat ? 16 : 8;
  for (int row = 0; row < view.height; ++row) {
    for (int column = 0; column < view.width; ++column) visit(view.Row(0, row) + column * bytes);
  }
}

}  // namespace

PX::VideoFrameRef MakeGPUFrame(const std::shared_ptr<RefHost::GPUDevice>& device,
                               PixelFormat format, int width, int height,
                               const ColorSpace& colorSpace) {
  PX::VideoFrameRef frame;
  EXPECT_EQ(KS::CreateGPUVideoFrame(frame, device, format, width, height, {}, {}, {}, colorSpace, 0,
                                    0, 0, nullptr, {}, false),
            0);
  return frame;
}

PX::VideoFrameRef MakeSystemFrame(PixelFormat format, int width, int height,
                                  const ColorSpace& colorSpace, const Pixels& pixels) {
  PX::VideoFrameRef frame;
  EXPECT_EQ(
      RefHost::CreateSystemFrame(
          frame, {.format = format, .width = width, .height = height, .colorSpace = colorSpace}),
      0);
  auto pixel = pixels.begin();
  ForEachPlace(frame, [&](std::byte* place) { Store(*pixel++, format, place); });
  return frame;
}

PX::VideoFrameRef OnGPU(const std::shared_ptr<RefHost::GPUDevice>& device,
                        const PX::VideoFrameRef& frame) {
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  PX::VideoFrameRef onGPU = MakeGPUFrame(device, frame->GetPixelFormat(), bounds.width,
                                         bounds.height, frame->GetColorSpace());
  EXPECT_EQ(KS::GPUFrameManipulators::CopyFrame(frame, onGPU, 4, {}), 0);
  return onGPU;
}

Pixels PixelsOf(const PX::VideoFrameRef& frame) {
  PX::VideoFrameRef inMemory = frame;
  if (RefHost::IsOnGPU(frame)) {
    inMemory = MakeLike(frame);
    EXPECT_EQ(KS::GPUFrameManipulators::CopyFrame(frame, inMemory, 4, {}), 0);
  }
  Pixels pixels;
  const PixelFormat format = frame->GetPixelFormat();
  ForEachPlace(inMemory, [&](const std::byte* place) { pixels.push_back(Load(format, place)); });
  return pixels;
}

Pixels NotablePixels(int width, int height, unsigned seed) {
  using Limits = std::numeric_limits<float>;
  const std::vector<float> notable = {0.0F,
                                      -0.0F,
                                      1e-15F,
                                      Limits::denorm_min(),
                                      Limits::min(),
                                      0.25F,
                                      0.5F,
                                      0.92F,
                                      1.0F,
                                      2.0F,
                                      4.926F,
                                      49.26F,
                                      60000.0F,
                                      1e30F,
                                      -0.1F,
                                      -3.0F,
                                      -1e30F,
                                      Limits::max(),
                                      Limits::infinity(),
                                      -Limits::infinity(),
                                      Limits::quiet_NaN()};
  std::mt19937 random(seed);
  std::lognormal_distribution<float> light(-0.5F, 1.5F);
  Pixels pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  std::size_t combination = seed;
  for (Pixel& pixel : pixels) {
    const bool isSpecial = random() % 2 == 0;
    std::size_t rest = combination++ * 37;
    for (float& channel : pixel) {
      channel = isSpecial ? notable[rest % notable.size()] : light(random);
      rest /= notable.size();
    }
  }
  return pixels;
}

Pixels RoundedToHalf(Pixels pixels) {
  for (Pixel& pixel : pixels) {
    for (float& channel : pixel) channel = FromHalf(ToHalf(channel));
  }
  return pixels;
}

void ExpectSameBits(const Pixels& actual, const Pixels& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    for (std::size_t c = 0; c < 4; ++c) {
      const float a = actual[i][c];
      const float e = expected[i][c];
      if (std::isnan(a) && std::isnan(e)) continue;
      ASSERT_EQ(std::bit_cast<std::uint32_t>(a), std::bit_cast<std::uint32_t>(e))
          << "pixel " << i << " channel " << c << ": " << a << " and not " << e;
    }
  }
}

void ExpectComputed(const RefHost::GPUDevice& device, const Pixels& actual,
                    const Pixels& expected) {
  SCOPED_TRACE(testing::Message() << device.Info().name);
  if (device.Info().isExact) return ExpectSameBits(actual, expected);
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    float largest = 0.0F;
    for (const float channel : expected[i]) largest = std::max(largest, std::abs(channel));
    const bool isOrdinary =
        largest > 1e-6F && largest < 1e6F &&
        std::none_of(expected[i].begin(), expected[i].end(), [](float x) { return std::isnan(x); });
    for (std::size_t c = 0; isOrdinary && c < 4; ++c) {
      ASSERT_NEAR(actual[i][c], expected[i][c], 1e-4F * largest) << "pixel " << i;
    }
  }
}
