#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include <gtest/gtest.h>

#include "host/chromant/Conversion.h"
#include "host/kestrel/FrameInterfaces.h"
#include "host/kestrel/FrameManipulators.h"
#include "tests/refhost/ThreadLimit.h"
#include "tests/refhost/kestrel/Frames.h"

using orvmediatypes::color::ColorSpace;
using RefHost::ChromaFormat;

namespace {

constexpr int kInvalidFrame = static_cast<int>(0xA00F000EU);
constexpr int kNotSupported = static_cast<int>(0xA00F000CU);

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

struct Size {
  int width;
  int height;
};
constexpr std::array<Size, 5> kSizes{{{1, 1}, {3, 5}, {17, 9}, {300, 70}, {16, 100}}};

template <class Sample>
Sample SampleAt(const PX::VideoFrameRef& frame, int index) {
  Sample sample;
  std::memcpy(&sample, RowOf(frame, 0, 0) + sizeof(Sample) * static_cast<std::size_t>(index),
              sizeof(Sample));
  return sample;
}

/// A float frame of one row whose components are the given values.
template <std::size_t N>
PX::VideoFrameRef FrameOf(const std::array<float, N>& values) {
  static_assert(N % 4 == 0);
  PX::VideoFrameRef frame = MakeFrame(RefHost::kBgraFloat, N / 4, 1, kSrgb);
  std::memcpy(RowOf(frame, 0, 0), values.data(), sizeof(values));
  return frame;
}

/// A float frame as other hosts show theirs: without a plane view.
class PlainFrame final : public orvcore::classref::IObject,
                         public PX::IVideoFrame,
                         public KS::IVideoFrameMemoryAccess {
 public:
  explicit PlainFrame(PX::VideoFrameRef frame)
      : rowBytes(PlaneOf(frame, 0).rowBytes), frame_(std::move(frame)) {}
  virtual ~PlainFrame() = default;

  bool hasMemory = true;
  std::int32_t rowBytes;
  /// Row bytes of the two-dimensional view; without them there is no such view.
  std::optional<std::int32_t> rowBytes2D;

  /// A handle that does not own the frame.
  PX::VideoFrameRef Handle() { return {this, this, nullptr}; }

  void* QueryInterface(std::string_view name) noexcept override {
    if (hasMemory && name == "KS::IVideoFrameMemoryAccess") {
      return static_cast<KS::IVideoFrameMemoryAccess*>(this);
    }
    if (rowBytes2D.has_value() && name == "KS::IVideoFrame2DPixelMemoryAccess") {
      return static_cast<KS::IVideoFrame2DPixelMemoryAccess*>(&pixels_);
    }
    return nullptr;
  }
  orvcore::geom::Bounds GetBounds() const override { return frame_->GetBounds(); }
  orvmediatypes::PixelAspectRatio GetPixelAspectRatio() const override { return {}; }
  PixelFormat GetPixelFormat() const override { return frame_->GetPixelFormat(); }
  ColorSpace GetColorSpace() const override { return frame_->GetColorSpace(); }
  void SetColorSpace(const ColorSpace& space) override { frame_->SetColorSpace(space); }
  orvmediatypes::FieldType GetFieldType() const override { return frame_->GetFieldType(); }
  orvcore::geom::PointT<int> GetOrigin() const override { return frame_->GetOrigin(); }
  void* GetData() const override { return PlaneOf(frame_, 0).data; }
  std::int32_t GetRowBytes() const override { return rowBytes; }

 private:
  struct PixelView final : KS::IVideoFrame2DPixelMemoryAccess {
    explicit PixelView(const PlainFrame& frame) : owner(frame) {}
    std::int32_t GetRowCount() const override { return owner.GetBounds().height; }
    std::int32_t GetRowBytes() const override { return owner.rowBytes2D.value_or(0); }
    const PlainFrame& owner;
  };

  PX::VideoFrameRef frame_;
  PixelView pixels_{*this};
};

TEST(CopyFrame, CopiesEveryFormatBitForBit) {
  for (const auto& list : {InterleavedFormats(), YCbCrFormats()}) {
    for (const auto& [name, format] : list) {
      for (const auto& [width, height] : kSizes) {
        const PX::VideoFrameRef from = MakeFrame(format, width, height, YCbCr(1, false));
        const PX::VideoFrameRef to = MakeFrame(format, width, height, YCbCr(1, false));
        FillWithNoise(from, 1);
        ASSERT_EQ(Copy(from, to), 0) << name;
        EXPECT_EQ(Samples(from), Samples(to)) << name << " " << width << "x" << height;
      }
    }
  }
}

TEST(CopyFrame, BringsIntegersThroughFloatUnchanged) {
  for (const PixelFormat format : {RefHost::kBgra8, RefHost::kBgra16, RefHost::kBgraHalf}) {
    const PX::VideoFrameRef from = MakeFrame(format, 300, 70, kSrgb);
    const PX::VideoFrameRef between = MakeFrame(RefHost::kBgraFloat, 300, 70, kSrgb);
    const PX::VideoFrameRef to = MakeFrame(format, 300, 70, kSrgb);
    FillWithNoise(from, 2);
    ASSERT_EQ(Copy(from, between), 0);
    ASSERT_EQ(Copy(between, to), 0);
    EXPECT_EQ(Samples(from), Samples(to));
  }
}

TEST(CopyFrame, ClampsAndRoundsIntegers) {
  const PX::VideoFrameRef from =
      FrameOf<12>({0.0F, 1.0F, -0.25F, 1.5F, 0.4999F / 255.0F, 0.5001F / 255.0F, kNaN, kInfinity,
                   -kInfinity, 1e30F, -0.0F, 254.6F / 255.0F});
  const PX::VideoFrameRef to = MakeFrame(RefHost::kBgra8, 3, 1, kSrgb);
  ASSERT_EQ(Copy(from, to), 0);
  const std::array<int, 12> expected{0, 255, 0, 255, 0, 1, 0, 255, 0, 255, 0, 255};
  for (int i = 0; i < 12; ++i) {
    EXPECT_EQ(SampleAt<std::uint8_t>(to, i), expected[static_cast<std::size_t>(i)]) << i;
  }
}

TEST(CopyFrame, RoundsHalvesToEvenAndDoesNotClampThem) {
  const PX::VideoFrameRef from = FrameOf<8>({1.0F + 0x1p-11F, 1.0F + 0x3p-11F, 65504.0F, 65520.0F,
                                             -2.0F, 0x1p-24F, kInfinity, -kInfinity});
  const PX::VideoFrameRef to = MakeFrame(RefHost::kBgraHalf, 2, 1, kSrgb);
  ASSERT_EQ(Copy(from, to), 0);
  const std::array<int, 8> expected{0x3C00, 0x3C02, 0x7BFF, 0x7C00, 0xC000, 0x0001, 0x7C00, 0xFC00};
  for (int i = 0; i < 8; ++i) {
    EXPECT_EQ(SampleAt<std::uint16_t>(to, i), expected[static_cast<std::size_t>(i)]) << i;
  }
}

TEST(CopyFrame, PassesEverythingOnBetweenFloatsOfOneColorSpace) {
  const std::array<float, 8> values{kNaN, kInfinity, -kInfinity, 1e-42F, -5.0F, 7e9F, 0.0F, 2.0F};
  const PX::VideoFrameRef to = MakeFrame(RefHost::kBgraFloat, 2, 1, kSrgb);
  const PX::VideoFrameRef from = FrameOf(values);
  ASSERT_EQ(Copy(from, to), 0);
  EXPECT_EQ(Samples(from), Samples(to));
}

TEST(CopyFrame, ConvertsColorsAsTheConverterDoes) {
  const ColorSpace pq(Rgb(9, 16));
  for (const auto& [name, format] : InterleavedFormats()) {
    const PX::VideoFrameRef from = MakeFrame(RefHost::kBgra16, 300, 70, pq.Description());
    const PX::VideoFrameRef to = MakeFrame(format, 300, 70, Rgb(1, 8));
    const PX::VideoFrameRef expected = MakeFrame(format, 300, 70, Rgb(1, 8));
    FillWithNoise(from, 3);
    ASSERT_EQ(Copy(from, to), 0);
    ASSERT_EQ(CHR::ConvertFrame(RowOf(from, 0, 0), RowOf(expected, 0, 0), 300, 70, pq,
                                RefHost::kBgra16, PlaneOf(from, 0).rowBytes, ColorSpace(Rgb(1, 8)),
                                format, PlaneOf(expected, 0).rowBytes, {}),
              0);
    EXPECT_EQ(Samples(to), Samples(expected)) << name;
  }
}

TEST(CopyFrame, HonoursTheColorManagementSettings) {
  using orvmediatypes::color::ColorManagementSettings;
  using orvmediatypes::color::GraphicsWhiteLuminance;
  const PX::VideoFrameRef from = FrameOf<4>({0.5F, 0.5F, 0.5F, 1.0F});
  from->SetColorSpace(ColorSpace(Rgb(9, 16)));
  const PX::VideoFrameRef to = MakeFrame(RefHost::kBgraFloat, 1, 1, Rgb(9, 8));
  const auto lightAt = [&](GraphicsWhiteLuminance white) {
    EXPECT_EQ(KS::VideoFrameManipulators::CopyFrame(from, to, 4, ColorManagementSettings(white)),
              0);
    return FloatPixel(to, 0, 0)[1];
  };
  const float at100 = lightAt(GraphicsWhiteLuminance::Nits100);
  const float at300 = lightAt(GraphicsWhiteLuminance::Nits300);
  EXPECT_GT(at300, 0.0F);
  EXPECT_NEAR(at100 / at300, 3.0F, 1e-5F);
}

TEST(CopyFrame, ConvertsBetweenHlgDisplaysOfDifferentPeaks) {
  ColorDescription bright = Rgb(9, 18);
  bright.peakLuminance = 2000;
  const PX::VideoFrameRef from = FrameOf<4>({0.5F, 0.5F, 0.5F, 1.0F});
  from->SetColorSpace(ColorSpace(Rgb(9, 18)));
  const PX::VideoFrameRef to = MakeFrame(RefHost::kBgraFloat, 1, 1, bright);
  ASSERT_EQ(Copy(from, to), 0);
  EXPECT_LT(FloatPixel(to, 0, 0)[1], 0.49F);
}

TEST(CopyFrame, ConvertsOnlySamplesWhereNoOneKnowsTheColors) {
  for (const ColorDescription& unknown : {ColorDescription{}, Rgb(2, 2), Rgb(3, 200)}) {
    const PX::VideoFrameRef from = FrameOf<4>({0.0F, 0.5F, 1.0F, 1.0F});
    from->SetColorSpace(ColorSpace(unknown));
    const PX::VideoFrameRef to = MakeFrame(RefHost::kBgra16, 1, 1, unknown);
    ASSERT_EQ(Copy(from, to), 0);
    EXPECT_EQ(SampleAt<std::uint16_t>(to, 1), 32768);
    const PX::VideoFrameRef other = MakeFrame(RefHost::kBgraFloat, 1, 1, Rgb(1, 8));
    EXPECT_EQ(Copy(from, other), kNotSupported);
  }
}

TEST(CopyFrame, TouchesNothingBeyondTheRows) {
  for (const auto& list : ConvertedFormats()) {
    for (const auto& [name, format] : list) {
      for (const auto& [width, height] : kSizes) {
        const PX::VideoFrameRef from = MakeFrame(RefHost::kBgraFloat, width, height, kSrgb);
        FillWithGradient(from);
        const GuardedFrame to(format, width, height, YCbCr(1, false));
        ASSERT_EQ(Copy(from, to.frame), 0) << name;
        EXPECT_TRUE(to.IsGuardIntact()) << name << " " << width << "x" << height;

        const GuardedFrame same(format, width, height, YCbCr(1, false));
        ASSERT_EQ(Copy(to.frame, same.frame), 0) << name;
        EXPECT_TRUE(same.IsGuardIntact()) << name;
        EXPECT_EQ(Samples(same.frame), Samples(to.frame)) << name;
      }
    }
  }
}

TEST(CopyFrame, ReadsAndWritesPaddedRowsAsPackedOnes) {
  for (const auto& list : ConvertedFormats()) {
    for (const auto& [name, format] : list) {
      const GuardedFrame padded(format, 17, 41, YCbCr(6, true));
      const PX::VideoFrameRef packed = MakeFrame(format, 17, 41, YCbCr(6, true));
      FillWithNoise(packed, 4);
      ASSERT_EQ(Copy(packed, padded.frame), 0);
      const PX::VideoFrameRef fromPadded = MakeFrame(RefHost::kBgraFloat, 17, 41, Rgb(9, 8));
      const PX::VideoFrameRef fromPacked = MakeFrame(RefHost::kBgraFloat, 17, 41, Rgb(9, 8));
      ASSERT_EQ(Copy(padded.frame, fromPadded), 0);
      ASSERT_EQ(Copy(packed, fromPacked), 0);
      EXPECT_EQ(Samples(fromPadded), Samples(fromPacked)) << name;
    }
  }
}

TEST(CopyFrame, MakesTheSameBitsOnOneThreadAndOnTwo) {
  for (const auto& list : ConvertedFormats()) {
    for (const auto& [name, format] : list) {
      const PX::VideoFrameRef from = MakeFrame(RefHost::kBgraFloat, 61, 203, kSrgb);
      FillWithNoise(from, 5);
      std::array<PX::VideoFrameRef, 2> made;
      std::array<PX::VideoFrameRef, 2> back;
      for (std::size_t threads = 1; threads <= 2; ++threads) {
        const ThreadLimit limit(static_cast<int>(threads));
        made[threads - 1] = MakeFrame(format, 61, 203, YCbCr(9, false));
        back[threads - 1] = MakeFrame(RefHost::kBgraFloat, 61, 203, Rgb(9, 16));
        ASSERT_EQ(Copy(from, made[threads - 1]), 0) << name;
        ASSERT_EQ(Copy(made[threads - 1], back[threads - 1]), 0) << name;
      }
      EXPECT_EQ(Samples(made[0]), Samples(made[1])) << name;
      EXPECT_EQ(Samples(back[0]), Samples(back[1])) << name;
    }
  }
}

TEST(CopyFrame, DoesNothingWhenSourceAndDestinationAreOneFrame) {
  for (const PixelFormat format :
       {RefHost::kBgraHalf, RefHost::SemiPlanarYCbCr(ChromaFormat::C420, 10)}) {
    const PX::VideoFrameRef frame = MakeFrame(format, 17, 41, YCbCr(9, false));
    FillWithNoise(frame, 6);
    const auto before = Samples(frame);
    EXPECT_EQ(Copy(frame, frame), 0);
    EXPECT_EQ(Samples(frame), before);
  }
}

/// Wide enough for a row to be worked on in pieces.
constexpr int kSharedWidth = 600;
/// Row bytes that hold a row of every format.
constexpr std::int32_t kWideRow = kSharedWidth * 16;

/// Two frames that show one memory, converted into one another, against two separate ones.
void ExpectSharedMemoryConverts(PixelFormat from, const ColorDescription& fromColors,
                                PixelFormat to, const ColorDescription& toColors,
                                std::int32_t rowBytes = 0) {
  constexpr int kHeight = 130;
  std::vector<std::byte> memory(std::size_t{kWideRow} * kHeight);
  const auto borrow = [&](PixelFormat format, const ColorDescription& colors) {
    RefHost::SystemFrameLayout layout{.format = format,
                                      .width = kSharedWidth,
                                      .height = kHeight,
                                      .colorSpace = ColorSpace(colors),
                                      .borrowed = RefHost::BorrowedMemory{}};
    layout.rowBytes.fill(rowBytes);
    layout.borrowed->planes = {memory.data(), memory.data() + memory.size() / 2,
                               memory.data() + memory.size() * 3 / 4};
    PX::VideoFrameRef frame;
    EXPECT_EQ(RefHost::CreateSystemFrame(frame, layout), 0);
    return frame;
  };
  const PX::VideoFrameRef source = borrow(from, fromColors);
  const PX::VideoFrameRef destination = borrow(to, toColors);
  const PX::VideoFrameRef separate = MakeFrame(from, kSharedWidth, kHeight, fromColors);
  const PX::VideoFrameRef expected = MakeFrame(to, kSharedWidth, kHeight, toColors);
  FillWithNoise(separate, 7);
  ASSERT_EQ(Copy(separate, source), 0);
  ASSERT_EQ(Copy(separate, expected), 0);
  ASSERT_EQ(Copy(source, destination), 0);
  EXPECT_EQ(Samples(destination), Samples(expected));
}

TEST(CopyFrame, WorksInPlaceWherePixelsHaveOneSize) {
  ExpectSharedMemoryConverts(RefHost::kBgraFloat, Rgb(9, 16), RefHost::kBgraFloat, Rgb(1, 8));
  ExpectSharedMemoryConverts(RefHost::kBgra16, Rgb(9, 16), RefHost::kBgraHalf, Rgb(1, 8));
}

TEST(CopyFrame, IsRightOnSharedMemoryOfDifferentLayouts) {
  ExpectSharedMemoryConverts(RefHost::kBgraHalf, Rgb(9, 16), RefHost::kBgraFloat, Rgb(1, 8));
  ExpectSharedMemoryConverts(RefHost::kBgraHalf, Rgb(9, 16), RefHost::kBgraFloat, Rgb(1, 8),
                             kWideRow);
  ExpectSharedMemoryConverts(RefHost::kBgraFloat, Rgb(9, 16), RefHost::kBgra8, Rgb(1, 13));
}

TEST(CopyFrame, IsRightOnMemorySharedWithAYCbCrFrame) {
  ExpectSharedMemoryConverts(RefHost::PlanarYCbCr(ChromaFormat::C420, 8), YCbCr(1, false),
                             RefHost::kBgraFloat, Rgb(1, 8));
  ExpectSharedMemoryConverts(RefHost::PlanarYCbCr(ChromaFormat::C420, 8), YCbCr(1, false),
                             RefHost::PlanarYCbCr(ChromaFormat::C420, 8), YCbCr(9, true));
}

TEST(CopyFrame, TakesInterleavedFramesWithoutAPlaneView) {
  const PX::VideoFrameRef pixels = MakeFrame(RefHost::kBgraFloat, 17, 9, kSrgb);
  FillWithNoise(pixels, 8);
  PlainFrame plain(pixels);
  const PX::VideoFrameRef to = MakeFrame(RefHost::kBgraFloat, 17, 9, kSrgb);
  ASSERT_EQ(Copy(plain.Handle(), to), 0);
  EXPECT_EQ(Samples(to), Samples(pixels));
}

TEST(CopyFrame, PrefersTheRowBytesOfTheTwoDimensionalView) {
  const PX::VideoFrameRef pixels = MakeFrame(RefHost::kBgraFloat, 17, 9, kSrgb);
  FillWithNoise(pixels, 8);
  PlainFrame plain(pixels);
  plain.rowBytes2D = plain.rowBytes;
  plain.rowBytes = 0;
  const PX::VideoFrameRef to = MakeFrame(RefHost::kBgraFloat, 17, 9, kSrgb);
  ASSERT_EQ(Copy(plain.Handle(), to), 0);
  EXPECT_EQ(Samples(to), Samples(pixels));
}

TEST(CopyFrame, RefusesFramesWhosePixelsCannotBeHad) {
  const PX::VideoFrameRef good = MakeFrame(RefHost::kBgraFloat, 4, 4, kSrgb);
  EXPECT_EQ(Copy({}, good), kInvalidFrame);
  EXPECT_EQ(Copy(good, {}), kInvalidFrame);
  PlainFrame noMemory(good);
  noMemory.hasMemory = false;
  EXPECT_EQ(Copy(noMemory.Handle(), good), kInvalidFrame);
  EXPECT_EQ(Copy(good, noMemory.Handle()), kInvalidFrame);
  PlainFrame noPlanes(
      MakeFrame(RefHost::PlanarYCbCr(ChromaFormat::C420, 8), 4, 4, YCbCr(1, false)));
  EXPECT_EQ(Copy(noPlanes.Handle(), good), kInvalidFrame);
}

TEST(CopyFrame, RefusesRowsShorterThanTheirPixels) {
  const PX::VideoFrameRef good = MakeFrame(RefHost::kBgraFloat, 4, 4, kSrgb);
  PlainFrame shortRows(MakeFrame(RefHost::kBgraFloat, 4, 4, kSrgb));
  for (const std::int32_t rowBytes : {63, 0, -64}) {
    shortRows.rowBytes = rowBytes;
    EXPECT_EQ(Copy(shortRows.Handle(), good), kInvalidFrame) << rowBytes;
    EXPECT_EQ(Copy(good, shortRows.Handle()), kInvalidFrame) << rowBytes;
  }
}

TEST(CopyFrame, RefusesOtherSizes) {
  const PX::VideoFrameRef frame = MakeFrame(RefHost::kBgraFloat, 4, 4, kSrgb);
  EXPECT_EQ(Copy(frame, MakeFrame(RefHost::kBgraFloat, 4, 5, kSrgb)), kInvalidFrame);
  EXPECT_EQ(Copy(frame, MakeFrame(RefHost::kBgraFloat, 3, 4, kSrgb)), kInvalidFrame);
}

TEST(CopyFrame, TakesNoNoticeOfWhereFramesLie) {
  RefHost::SystemFrameLayout layout{.format = RefHost::kBgraFloat,
                                    .width = 4,
                                    .height = 4,
                                    .left = 10,
                                    .top = -3,
                                    .colorSpace = ColorSpace(kSrgb)};
  PX::VideoFrameRef moved;
  ASSERT_EQ(RefHost::CreateSystemFrame(moved, layout), 0);
  FillWithNoise(moved, 9);
  const PX::VideoFrameRef to = MakeFrame(RefHost::kBgraFloat, 4, 4, kSrgb);
  ASSERT_EQ(Copy(moved, to), 0);
  EXPECT_EQ(Samples(to), Samples(moved));
}

TEST(CopyFrame, LeavesTheColorSpaceTagsAlone) {
  const PX::VideoFrameRef from = MakeFrame(RefHost::kBgraFloat, 4, 4, Rgb(9, 16));
  const PX::VideoFrameRef to = MakeFrame(RefHost::kBgra8, 4, 4, kSrgb);
  FillWithNoise(from, 10);
  ASSERT_EQ(Copy(from, to), 0);
  EXPECT_EQ(from->GetColorSpace().Description(), Rgb(9, 16));
  EXPECT_EQ(to->GetColorSpace().Description(), kSrgb);
}

}  // namespace
