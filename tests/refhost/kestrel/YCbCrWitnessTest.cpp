#include <array>
#include <cmath>
#include <memory>
#include <vector>

#include <gtest/gtest.h>
#include <zimg.h>

#include "host/orvcore/Allocator.h"
#include "tests/refhost/kestrel/Frames.h"

using RefHost::ChromaFormat;

// Whole pictures in one go through zimg, as the witness of pictures made in bands: the same bits.

namespace {

template <class Sample>
using Samples64 = std::vector<Sample, orvcore::allocator::STLAllocator<Sample>>;

/// Three planes of a whole picture, rows padded to 64 bytes.
template <class Sample>
struct Picture {
  explicit Picture(const zimg_image_format& format) {
    for (std::size_t i = 0; i < 3; ++i) {
      widths[i] = i == 0 ? format.width : format.width >> format.subsample_w;
      heights[i] = i == 0 ? format.height : format.height >> format.subsample_h;
      pitches[i] = (widths[i] + 63) / 64 * 64;
      planes[i].resize(pitches[i] * heights[i]);
    }
  }
  Sample& At(std::size_t plane, std::size_t x, std::size_t y) {
    return planes[plane][pitches[plane] * y + x];
  }
  template <class Buffer>
  Buffer View() {
    Buffer buffer{};
    buffer.version = ZIMG_API_VERSION;
    for (std::size_t i = 0; i < 3; ++i) {
      buffer.plane[i] = {planes[i].data(), static_cast<std::ptrdiff_t>(pitches[i] * sizeof(Sample)),
                         ZIMG_BUFFER_MAX};
    }
    return buffer;
  }

  std::array<std::size_t, 3> widths{}, heights{}, pitches{};
  std::array<Samples64<Sample>, 3> planes;
};

zimg_image_format WitnessFormat(const PX::VideoFrameRef& frame) {
  const RefHost::FormatInfo info = InfoOf(frame->GetPixelFormat());
  const ColorDescription colors = frame->GetColorSpace().Description();
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  zimg_image_format format;
  zimg_image_format_default(&format, ZIMG_API_VERSION);
  format.width = static_cast<unsigned>(bounds.width);
  format.height = static_cast<unsigned>(bounds.height);
  if (!info.IsYCbCr()) {
    format.pixel_type = ZIMG_PIXEL_FLOAT;
    format.color_family = ZIMG_COLOR_RGB;
    format.matrix_coefficients = ZIMG_MATRIX_RGB;
    return format;
  }
  // Codes of every depth in 16-bit words.
  format.pixel_type = ZIMG_PIXEL_WORD;
  format.depth = static_cast<unsigned>(info.bits);
  format.color_family = ZIMG_COLOR_YUV;
  format.subsample_w = info.chroma == ChromaFormat::C444 ? 0 : 1;
  format.subsample_h = info.chroma == ChromaFormat::C420 ? 1 : 0;
  format.matrix_coefficients = static_cast<zimg_matrix_coefficients_e>(colors.matrix);
  format.pixel_range = colors.fullRange ? ZIMG_RANGE_FULL : ZIMG_RANGE_LIMITED;
  format.chroma_location = static_cast<zimg_chroma_location_e>(colors.chromaLocation);
  return format;
}

Picture<std::uint16_t> PictureOfCodes(const PX::VideoFrameRef& frame) {
  Picture<std::uint16_t> picture(WitnessFormat(frame));
  for (std::size_t i = 0; i < 3; ++i) {
    const std::vector<unsigned> codes = Codes(frame, static_cast<int>(i));
    auto code = codes.begin();
    for (std::size_t y = 0; y < picture.heights[i]; ++y) {
      for (std::size_t x = 0; x < picture.widths[i]; ++x) {
        picture.At(i, x, y) = static_cast<std::uint16_t>(*code++);
      }
    }
  }
  return picture;
}

Picture<float> SignalsOf(const PX::VideoFrameRef& frame) {
  Picture<float> picture(WitnessFormat(frame));
  for (std::size_t y = 0; y < picture.heights[0]; ++y) {
    const float* pixel = FloatPixel(frame, 0, static_cast<int>(y));
    for (std::size_t x = 0; x < picture.widths[0]; ++x, pixel += 4) {
      for (std::size_t i = 0; i < 3; ++i) picture.At(i, x, y) = pixel[2 - i];
    }
  }
  return picture;
}

template <class Source, class Destination>
void RunZimg(Picture<Source>& source, const zimg_image_format& from,
             Picture<Destination>& destination, const zimg_image_format& to) {
  const std::unique_ptr<zimg_filter_graph, decltype(&zimg_filter_graph_free)> graph(
      zimg_filter_graph_build(&from, &to, nullptr), zimg_filter_graph_free);
  ASSERT_NE(graph, nullptr);
  std::size_t scratchBytes = 0;
  zimg_filter_graph_get_tmp_size(graph.get(), &scratchBytes);
  Samples64<std::byte> scratch(scratchBytes);
  const auto input = source.template View<zimg_image_buffer_const>();
  const auto output = destination.template View<zimg_image_buffer>();
  ASSERT_EQ(zimg_filter_graph_process(graph.get(), &input, &output, scratch.data(), nullptr,
                                      nullptr, nullptr, nullptr),
            0);
}

unsigned LargestDifference(const PX::VideoFrameRef& frame, Picture<std::uint16_t>& picture) {
  unsigned largest = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    const std::vector<unsigned> codes = Codes(frame, static_cast<int>(i));
    EXPECT_EQ(codes.size(), picture.widths[i] * picture.heights[i]);
    auto code = codes.begin();
    for (std::size_t y = 0; y < picture.heights[i]; ++y) {
      for (std::size_t x = 0; x < picture.widths[i]; ++x, ++code) {
        const unsigned expected = picture.At(i, x, y);
        largest = std::max(largest, std::max(*code, expected) - std::min(*code, expected));
      }
    }
  }
  return largest;
}

struct Case {
  NamedFormat format;
  ColorDescription colors;
  std::string name;
};

std::vector<Case> Cases() {
  std::vector<Case> cases;
  for (const NamedFormat& format : YCbCrFormats()) {
    for (const bool fullRange : {false, true}) {
      for (int location = 0; location <= 5; ++location) {
        cases.push_back({format, YCbCr(9, fullRange, location),
                         format.name + (fullRange ? " full" : " limited") + " range, location " +
                             std::to_string(location)});
      }
    }
  }
  return cases;
}

// Several bands, the last one short.
constexpr int kWidth = 46;
constexpr int kHeight = 110;

TEST(YCbCrWitness, AgreesOnFloatToYCbCr) {
  const PX::VideoFrameRef from = MakeFrame(RefHost::kBgraFloat, kWidth, kHeight, kSrgb);
  FillWithNoise(from, 1);
  for (const Case& test : Cases()) {
    const PX::VideoFrameRef to = MakeFrame(test.format.format, kWidth, kHeight, test.colors);
    ASSERT_EQ(Copy(from, to), 0);
    auto source = SignalsOf(from);
    Picture<std::uint16_t> expected(WitnessFormat(to));
    RunZimg(source, WitnessFormat(from), expected, WitnessFormat(to));
    EXPECT_EQ(LargestDifference(to, expected), 0U) << test.name;
  }
}

TEST(YCbCrWitness, AgreesOnYCbCrToFloat) {
  for (const Case& test : Cases()) {
    const PX::VideoFrameRef from = MakeFrame(test.format.format, kWidth, kHeight, test.colors);
    FillWithNoise(from, 2);
    const PX::VideoFrameRef to = MakeFrame(RefHost::kBgraFloat, kWidth, kHeight, kSrgb);
    ASSERT_EQ(Copy(from, to), 0);
    auto source = PictureOfCodes(from);
    Picture<float> expected(WitnessFormat(to));
    RunZimg(source, WitnessFormat(from), expected, WitnessFormat(to));
    float largest = 0.0F;
    for (std::size_t y = 0; y < expected.heights[0]; ++y) {
      const float* pixel = FloatPixel(to, 0, static_cast<int>(y));
      for (std::size_t x = 0; x < expected.widths[0]; ++x, pixel += 4) {
        for (std::size_t i = 0; i < 3; ++i) {
          largest = std::max(largest, std::abs(pixel[2 - i] - expected.At(i, x, y)));
        }
      }
    }
    EXPECT_EQ(largest, 0.0F) << test.name;
  }
}

TEST(YCbCrWitness, AgreesOnYCbCrToYCbCr) {
  for (const Case& test : Cases()) {
    for (const ChromaFormat chroma : {ChromaFormat::C420, ChromaFormat::C422, ChromaFormat::C444}) {
      const PX::VideoFrameRef from = MakeFrame(test.format.format, kWidth, kHeight, test.colors);
      FillWithNoise(from, 3);
      const PX::VideoFrameRef to =
          MakeFrame(RefHost::PlanarYCbCr(chroma, 10), kWidth, kHeight, YCbCr(1, false, 0));
      ASSERT_EQ(Copy(from, to), 0);
      auto source = PictureOfCodes(from);
      Picture<std::uint16_t> expected(WitnessFormat(to));
      RunZimg(source, WitnessFormat(from), expected, WitnessFormat(to));
      EXPECT_EQ(LargestDifference(to, expected), 0U) << test.name;
    }
  }
}

}  // namespace
