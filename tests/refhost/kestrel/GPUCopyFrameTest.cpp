#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameInterfaces.h"
#include "host/kestrel/FrameManipulators.h"
#include "refhost/ResultCodes.h"
#include "refhost/kestrel/FrameView.h"
#include "refhost/kestrel/PixelFormats.h"
#include "refhost/kestrel/SystemFrame.h"
#include "tests/devices/DeviceFrames.h"
#include "tests/devices/EveryDevice.h"
#include "tests/refhost/Spaces.h"

using orvmediatypes::PixelFormat;
using orvmediatypes::color::ColorSpace;
using RefHost::kBgra16;
using RefHost::kBgra8;
using RefHost::kBgraFloat;
using RefHost::kBgraHalf;

namespace {

/// Every transfer that is known, HLG for two displays, and several primaries.
std::vector<ColorSpace> EveryColorSpace() {
  return {Space(1, 1), Space(9, 8),  Space(1, 13), Space(9, 16),  Space(9, 18), Space(9, 18, 4000),
          Space(5, 4), Space(11, 5), Space(7, 7),  Space(10, 17), Space(12, 16)};
}

/// A signal from 0 to 1 in every pixel, none like its neighbours.
Pixels RandomSignals(int width, int height) {
  std::mt19937 random(7);
  std::uniform_real_distribution<float> signal(0.0F, 1.0F);
  Pixels pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (Pixel& pixel : pixels) {
    for (float& channel : pixel) channel = signal(random);
  }
  return pixels;
}

ColorSpace Bt709() {
  orvmediatypes::color::ColorDescription description;
  description.primaries = 1;
  description.transfer = 1;
  description.matrix = 1;
  return ColorSpace(description);
}

/// All samples of a frame in system memory, without what lies between rows.
std::vector<std::byte> SamplesOf(const PX::VideoFrameRef& frame) {
  RefHost::FrameView view;
  EXPECT_EQ(RefHost::ViewFrame(frame, view), 0);
  std::vector<std::byte> samples;
  for (int plane = 0; plane < view.info.planeCount; ++plane) {
    for (int row = 0; row < view.planes[static_cast<std::size_t>(plane)].height; ++row) {
      const std::byte* at = view.Row(plane, row);
      samples.insert(samples.end(), at, at + view.RowSize(plane));
    }
  }
  return samples;
}

class GPUFrames : public OnDevice {
 protected:
  static int Copy(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to,
                  std::uint32_t white = 203) {
    return KS::GPUFrameManipulators::CopyFrame(from, to, 4, White(white));
  }
};

TEST_P(GPUFrames, ComeBackAsTheyWentUp) {
  for (const PixelFormat format : {kBgraFloat, kBgraHalf}) {
    const Pixels pixels = RoundedToHalf(NotablePixels(37, 11, 4));
    const auto frame = MakeSystemFrame(format, 37, 11, Space(9, 16), pixels);
    ExpectSameBits(PixelsOf(OnGPU(device_, frame)), pixels);
  }
}

TEST_P(GPUFrames, AreConvertedToTheBitsOfTheProcessor) {
  const Pixels pixels = NotablePixels(37, 29, 7);
  const Pixels signals = [&] {
    Pixels scaled = pixels;
    for (Pixel& pixel : scaled) {
      for (float& channel : pixel) channel *= 0.4F;
    }
    return scaled;
  }();
  for (const ColorSpace& from : EveryColorSpace()) {
    for (const ColorSpace& to : EveryColorSpace()) {
      SCOPED_TRACE(testing::Message()
                   << int{from.Description().primaries} << '/' << int{from.Description().transfer}
                   << " to " << int{to.Description().primaries} << '/'
                   << int{to.Description().transfer});
      const auto source = MakeSystemFrame(kBgraFloat, 37, 29, from, signals);
      const auto expected = MakeSystemFrame(kBgraFloat, 37, 29, to, pixels);
      ASSERT_EQ(KS::VideoFrameManipulators::CopyFrame(source, expected, 4, White(100)), 0);
      const auto onGPU = MakeGPUFrame(device_, kBgraFloat, 37, 29, to);
      ASSERT_EQ(Copy(OnGPU(device_, source), onGPU, 100), 0);
      ExpectComputed(*device_, PixelsOf(onGPU), PixelsOf(expected));
    }
  }
}

TEST_P(GPUFrames, AreRoundedOnceBetweenFloatAndHalf) {
  const Pixels pixels = NotablePixels(37, 29, 9);
  const auto source = OnGPU(device_, MakeSystemFrame(kBgraFloat, 37, 29, Space(9, 8), pixels));
  const auto half = MakeGPUFrame(device_, kBgraHalf, 37, 29, Space(9, 8));
  ASSERT_EQ(Copy(source, half), 0);
  ExpectSameBits(PixelsOf(half), RoundedToHalf(pixels));
  const auto back = MakeGPUFrame(device_, kBgraFloat, 37, 29, Space(9, 8));
  ASSERT_EQ(Copy(half, back), 0);
  ExpectSameBits(PixelsOf(back), RoundedToHalf(pixels));
}

TEST_P(GPUFrames, TakeAndGiveOtherFormatsOfSystemMemory) {
  const auto integers = MakeSystemFrame(kBgraFloat, 9, 4, Space(1, 13), NotablePixels(9, 4, 2));
  PX::VideoFrameRef eight;
  ASSERT_EQ(RefHost::CreateSystemFrame(
                eight, {.format = kBgra8, .width = 9, .height = 4, .colorSpace = Space(1, 13)}),
            0);
  ASSERT_EQ(KS::VideoFrameManipulators::CopyFrame(integers, eight, 4, {}), 0);

  const auto onGPU = MakeGPUFrame(device_, kBgraFloat, 9, 4, Space(9, 16));
  ASSERT_EQ(Copy(eight, onGPU), 0);
  const auto expected = MakeSystemFrame(kBgraFloat, 9, 4, Space(9, 16), NotablePixels(9, 4, 2));
  ASSERT_EQ(KS::VideoFrameManipulators::CopyFrame(eight, expected, 4, {}), 0);
  ExpectComputed(*device_, PixelsOf(onGPU), PixelsOf(expected));

  const auto linear = MakeSystemFrame(kBgraFloat, 9, 4, Space(9, 8), NotablePixels(9, 4, 3));
  const auto expectedLinear = MakeSystemFrame(kBgraFloat, 9, 4, Space(9, 8), PixelsOf(linear));
  ASSERT_EQ(Copy(onGPU, linear), 0);
  ASSERT_EQ(KS::VideoFrameManipulators::CopyFrame(expected, expectedLinear, 4, {}), 0);
  ExpectSameBits(PixelsOf(linear), PixelsOf(expectedLinear));
}

/// Heights of a piece and a few rows, of whole pieces, and of more pieces than pass at once.
TEST_P(GPUFrames, PassInPiecesWithTheBitsOfTheProcessor) {
  for (const int height : {1, 63, 64, 65, 127, 128, 192, 193, 263, 511}) {
    SCOPED_TRACE(height);
    const auto picture =
        MakeSystemFrame(kBgraFloat, 21, height, Space(9, 16), NotablePixels(21, height, 6));
    const auto expectedUp =
        MakeSystemFrame(kBgraFloat, 21, height, Space(9, 8), NotablePixels(21, height, 1));
    ASSERT_EQ(KS::VideoFrameManipulators::CopyFrame(picture, expectedUp, 4, White(203)), 0);
    const auto onGPU = MakeGPUFrame(device_, kBgraFloat, 21, height, Space(9, 8));
    ASSERT_EQ(Copy(picture, onGPU), 0);
    ExpectSameBits(PixelsOf(onGPU), PixelsOf(expectedUp));

    const auto down =
        MakeSystemFrame(kBgraFloat, 21, height, Space(1, 13), NotablePixels(21, height, 2));
    const auto expectedDown =
        MakeSystemFrame(kBgraFloat, 21, height, Space(1, 13), NotablePixels(21, height, 3));
    ASSERT_EQ(Copy(onGPU, down), 0);
    ASSERT_EQ(KS::VideoFrameManipulators::CopyFrame(expectedUp, expectedDown, 4, White(203)), 0);
    ExpectSameBits(PixelsOf(down), PixelsOf(expectedDown));
  }
}

/// Chroma of a row is made from rows of the piece before and of the next.
TEST_P(GPUFrames, PassInPiecesToAndFromHalvedChroma) {
  const auto format = RefHost::PlanarYCbCr(RefHost::ChromaFormat::C420, 10);
  const auto make = [&](int height) {
    PX::VideoFrameRef frame;
    EXPECT_EQ(RefHost::CreateSystemFrame(
                  frame, {.format = format, .width = 34, .height = height, .colorSpace = Bt709()}),
              0);
    return frame;
  };
  for (const int height : {2, 63, 64, 65, 66, 128, 193, 263, 511}) {
    SCOPED_TRACE(height);
    const auto pixels =
        MakeSystemFrame(kBgraFloat, 34, height, Space(1, 13), RandomSignals(34, height));
    const auto planar = make(height);
    ASSERT_EQ(KS::VideoFrameManipulators::CopyFrame(pixels, planar, 4, White(203)), 0);
    const auto onGPU = MakeGPUFrame(device_, kBgraFloat, 34, height, Space(1, 8));
    ASSERT_EQ(Copy(planar, onGPU), 0);
    const auto expected =
        MakeSystemFrame(kBgraFloat, 34, height, Space(1, 8), NotablePixels(34, height, 1));
    ASSERT_EQ(KS::VideoFrameManipulators::CopyFrame(planar, expected, 4, White(203)), 0);
    ExpectSameBits(PixelsOf(onGPU), PixelsOf(expected));

    const auto back = make(height);
    const auto expectedBack = make(height);
    ASSERT_EQ(Copy(onGPU, back), 0);
    ASSERT_EQ(KS::VideoFrameManipulators::CopyFrame(expected, expectedBack, 4, White(203)), 0);
    EXPECT_EQ(SamplesOf(back), SamplesOf(expectedBack));
  }
}

TEST_P(GPUFrames, AreLeftAloneWhenCopiedOntoThemselves) {
  const Pixels pixels = NotablePixels(5, 5, 1);
  const auto frame = OnGPU(device_, MakeSystemFrame(kBgraFloat, 5, 5, Space(9, 16), pixels));
  EXPECT_EQ(Copy(frame, frame), 0);
  ExpectSameBits(PixelsOf(frame), pixels);
}

TEST_P(GPUFrames, ShowAllOfTheirInterfaces) {
  using orvcore::classref::InterfaceCast;
  const auto frame = MakeGPUFrame(device_, kBgraHalf, 33, 7, Space(9, 16));
  EXPECT_EQ(InterfaceCast<KS::IGPUVideoFrame>(frame)->GetDevice(), device_);
  EXPECT_NE(InterfaceCast<KS::IGPUVideoFrameMemoryAccess>(frame)->GetDevicePointer(), 0U);
  const auto rows = InterfaceCast<KS::IVideoFrame2DPixelMemoryAccess>(frame);
  EXPECT_EQ(rows->GetRowCount(), 7);
  EXPECT_GE(rows->GetRowBytes(), 33 * 8);
  EXPECT_EQ(rows->GetRowBytes() % 8, 0);
  InterfaceCast<KS::ICompletionEventVideoFrame>(frame)->WaitForCompletion();
  EXPECT_FALSE(InterfaceCast<KS::IVideoFrameMemoryAccess>(frame).IsUsable());
  EXPECT_EQ(frame->GetBounds(), (orvcore::geom::Bounds{0, 0, 33, 7}));
  EXPECT_EQ(frame->GetPixelFormat(), kBgraHalf);
  frame->SetColorSpace(Space(1, 13));
  EXPECT_EQ(frame->GetColorSpace().Description(), Space(1, 13).Description());
}

TEST_P(GPUFrames, KeepTheirDeviceAlive) {
  const Pixels pixels = NotablePixels(5, 5, 1);
  const auto frame = OnGPU(device_, MakeSystemFrame(kBgraFloat, 5, 5, Space(9, 16), pixels));
  device_ = nullptr;
  ExpectSameBits(PixelsOf(frame), pixels);
}

TEST_P(GPUFrames, AreRefusedWhereTheyCannotBeMadeOrConverted) {
  const auto create = [&](const std::shared_ptr<IL::Device>& device, PixelFormat format, int width,
                          int height) {
    PX::VideoFrameRef frame;
    const int result = KS::CreateGPUVideoFrame(frame, device, format, width, height, {}, {}, {},
                                               Space(9, 8), 0, 0, 0, nullptr, {}, false);
    EXPECT_FALSE(frame.IsUsable());
    return result;
  };
  EXPECT_EQ(create(nullptr, kBgraFloat, 4, 4), RefHost::kNotSupported);
  EXPECT_EQ(create(device_, kBgra8, 4, 4), RefHost::kNotSupported);
  EXPECT_EQ(create(device_, kBgra16, 4, 4), RefHost::kNotSupported);
  EXPECT_EQ(create(device_, RefHost::PlanarYCbCr(RefHost::ChromaFormat::C420, 8), 4, 4),
            RefHost::kNotSupported);
  EXPECT_EQ(create(device_, kBgraFloat, 0, 4), RefHost::kInvalidFrame);
  EXPECT_EQ(create(device_, kBgraFloat, 4, -1), RefHost::kInvalidFrame);
  EXPECT_EQ(create(device_, kBgraFloat, 1 << 30, 4), RefHost::kInvalidFrame);
  // Fits no device.
  EXPECT_EQ(create(device_, kBgraFloat, 1 << 17, 1 << 17), RefHost::kOutOfDeviceMemory);

  const auto frame = MakeGPUFrame(device_, kBgraFloat, 4, 4, Space(9, 16));
  EXPECT_EQ(Copy(frame, MakeGPUFrame(device_, kBgraFloat, 4, 5, Space(9, 16))),
            RefHost::kInvalidFrame);
  EXPECT_EQ(Copy(frame, MakeGPUFrame(device_, kBgraFloat, 4, 4, ColorSpace())),
            RefHost::kNotSupported);
  EXPECT_EQ(Copy({}, frame), RefHost::kInvalidFrame);
  EXPECT_EQ(Copy(frame, {}), RefHost::kInvalidFrame);
}

INSTANTIATE_TEST_SUITE_P(EveryDevice, GPUFrames, testing::ValuesIn(EveryDevice()), DeviceTestName);
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(GPUFrames);

}  // namespace
