#include "tests/refhost/kestrel/Frames.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

#include <gtest/gtest.h>

#include "host/kestrel/CreateFrames.h"
#include "host/kestrel/FrameManipulators.h"

using orvmediatypes::color::ColorSpace;

namespace {

constexpr std::byte kGuard{0xC7};

std::size_t RowSize(const PX::VideoFrameRef& frame, int plane) {
  const RefHost::FormatInfo info = InfoOf(frame->GetPixelFormat());
  return static_cast<std::size_t>(PlaneOf(frame, plane).width * info.SamplesPerPosition(plane) *
                                  info.bytesPerSample);
}

/// Where the codes of one component are stored.
struct ComponentPlace {
  RefHost::Plane plane;
  int offset = 0;
  int step = 1;
  std::size_t bytes = 1;
  unsigned shift = 0;

  std::byte* At(int x, int y) const {
    return static_cast<std::byte*>(plane.data) + std::ptrdiff_t{plane.rowBytes} * y +
           static_cast<std::size_t>(x * step + offset) * bytes;
  }
  unsigned CodeAt(int x, int y) const {
    std::uint16_t code = 0;
    std::memcpy(&code, At(x, y), bytes);
    return static_cast<unsigned>(code) >> shift;
  }
  void SetCodeAt(int x, int y, unsigned code) const {
    const auto stored = static_cast<std::uint16_t>(code << shift);
    std::memcpy(At(x, y), &stored, bytes);
  }
};

ComponentPlace PlaceOf(const PX::VideoFrameRef& frame, int component) {
  const RefHost::FormatInfo info = InfoOf(frame->GetPixelFormat());
  const auto bytes = static_cast<std::size_t>(info.bytesPerSample);
  if (info.layout == RefHost::FrameLayout::PlanarYCbCr) {
    return {PlaneOf(frame, component), 0, 1, bytes, 0};
  }
  const unsigned shift = info.bits > 8 ? static_cast<unsigned>(16 - info.bits) : 0U;
  if (component == 0) return {PlaneOf(frame, 0), 0, 1, bytes, shift};
  return {PlaneOf(frame, 1), component - 1, 2, bytes, shift};
}

}  // namespace

std::vector<NamedFormat> InterleavedFormats() {
  return {{"8", RefHost::kBgra8},
          {"16", RefHost::kBgra16},
          {"half", RefHost::kBgraHalf},
          {"float", RefHost::kBgraFloat}};
}

std::vector<NamedFormat> YCbCrFormats() {
  std::vector<NamedFormat> formats;
  for (const auto& [name, chroma] : {std::pair{"420", RefHost::ChromaFormat::C420},
                                     {"422", RefHost::ChromaFormat::C422},
                                     {"444", RefHost::ChromaFormat::C444}}) {
    for (const int bits : {8, 10, 12, 16}) {
      const std::string text = std::string(name) + " " + std::to_string(bits) + " bits";
      formats.push_back({"planar " + text, RefHost::PlanarYCbCr(chroma, bits)});
      formats.push_back({"semi-planar " + text, RefHost::SemiPlanarYCbCr(chroma, bits)});
    }
  }
  return formats;
}

RefHost::FormatInfo InfoOf(PixelFormat format) {
  return RefHost::DescribeFormat(format).value_or(RefHost::FormatInfo{});
}

ColorDescription Rgb(int primaries, int transfer) {
  ColorDescription colors;
  colors.primaries = static_cast<std::uint8_t>(primaries);
  colors.transfer = static_cast<std::uint8_t>(transfer);
  return colors;
}

ColorDescription YCbCr(int matrix, bool fullRange, int chromaLocation) {
  ColorDescription colors = Rgb(1, 13);
  colors.matrix = static_cast<std::uint8_t>(matrix);
  colors.fullRange = fullRange;
  colors.chromaLocation = static_cast<std::uint8_t>(chromaLocation);
  return colors;
}

PX::VideoFrameRef MakeFrame(PixelFormat format, int width, int height,
                            const ColorDescription& colors) {
  PX::VideoFrameRef frame;
  EXPECT_EQ(
      KS::CreateVideoFrame(frame, format, width, height, {}, ColorSpace(colors), false, false), 0);
  return frame;
}

GuardedFrame::GuardedFrame(PixelFormat format, int width, int height,
                           const ColorDescription& colors) {
  const RefHost::FormatInfo info = InfoOf(format);
  RefHost::SystemFrameLayout layout{.format = format,
                                    .width = width,
                                    .height = height,
                                    .colorSpace = ColorSpace(colors),
                                    .borrowed = RefHost::BorrowedMemory{}};
  for (int plane = 0; plane < info.planeCount; ++plane) {
    const int shiftX = plane == 0 ? 0 : info.ChromaShiftX();
    const int shiftY = plane == 0 ? 0 : info.ChromaShiftY();
    const auto index = static_cast<std::size_t>(plane);
    const int positions = (width + shiftX) >> shiftX;
    const int rows = (height + shiftY) >> shiftY;
    layout.rowBytes[index] = positions * info.SamplesPerPosition(plane) * info.bytesPerSample + 13;
    memories_.emplace_back(static_cast<std::size_t>(layout.rowBytes[index] * rows + 2), kGuard);
    layout.borrowed->planes[index] = memories_.back().data() + 1;
  }
  EXPECT_EQ(RefHost::CreateSystemFrame(frame, layout), 0);
}

bool GuardedFrame::IsGuardIntact() const {
  for (std::size_t plane = 0; plane < memories_.size(); ++plane) {
    std::vector<std::byte> rest = memories_[plane];
    const int index = static_cast<int>(plane);
    for (int row = 0; row < PlaneOf(frame, index).height; ++row) {
      const auto first = rest.begin() + (RowOf(frame, index, row) - memories_[plane].data());
      std::fill_n(first, RowSize(frame, index), kGuard);
    }
    if (std::any_of(rest.begin(), rest.end(), [](std::byte b) { return b != kGuard; })) {
      return false;
    }
  }
  return true;
}

RefHost::Plane PlaneOf(const PX::VideoFrameRef& frame, int index) {
  return orvcore::classref::InterfaceCast<RefHost::IVideoFramePlaneAccess>(frame)->GetPlane(index);
}

std::byte* RowOf(const PX::VideoFrameRef& frame, int plane, int row) {
  const RefHost::Plane at = PlaneOf(frame, plane);
  return static_cast<std::byte*>(at.data) + std::ptrdiff_t{at.rowBytes} * row;
}

float* FloatPixel(const PX::VideoFrameRef& frame, int x, int y) {
  return reinterpret_cast<float*>(RowOf(frame, 0, y)) + std::ptrdiff_t{4} * x;
}

unsigned Code(const PX::VideoFrameRef& frame, int component, int x, int y) {
  return PlaceOf(frame, component).CodeAt(x, y);
}

void SetCode(const PX::VideoFrameRef& frame, int component, int x, int y, unsigned code) {
  PlaceOf(frame, component).SetCodeAt(x, y, code);
}

std::vector<unsigned> Codes(const PX::VideoFrameRef& frame, int component) {
  const ComponentPlace place = PlaceOf(frame, component);
  std::vector<unsigned> codes;
  for (int y = 0; y < place.plane.height; ++y) {
    for (int x = 0; x < place.plane.width; ++x) codes.push_back(place.CodeAt(x, y));
  }
  return codes;
}

int ComponentWidth(const PX::VideoFrameRef& frame, int component) {
  return PlaneOf(frame, std::min(component, 1)).width;
}

int ComponentHeight(const PX::VideoFrameRef& frame, int component) {
  return PlaneOf(frame, std::min(component, 1)).height;
}

unsigned LargestCodeDifference(const PX::VideoFrameRef& a, const PX::VideoFrameRef& b) {
  unsigned largest = 0;
  for (int component = 0; component < 3; ++component) {
    const std::vector<unsigned> one = Codes(a, component);
    const std::vector<unsigned> other = Codes(b, component);
    EXPECT_EQ(one.size(), other.size());
    for (std::size_t i = 0; i < one.size(); ++i) {
      largest = std::max(largest, std::max(one[i], other[i]) - std::min(one[i], other[i]));
    }
  }
  return largest;
}

void FillWithNoise(const PX::VideoFrameRef& frame, unsigned seed) {
  std::mt19937 random(seed);
  const RefHost::FormatInfo info = InfoOf(frame->GetPixelFormat());
  if (info.IsYCbCr()) {
    std::uniform_int_distribution<unsigned> codes(0, (1U << static_cast<unsigned>(info.bits)) - 1U);
    for (int component = 0; component < 3; ++component) {
      const ComponentPlace place = PlaceOf(frame, component);
      for (int y = 0; y < place.plane.height; ++y) {
        for (int x = 0; x < place.plane.width; ++x) place.SetCodeAt(x, y, codes(random));
      }
    }
    return;
  }
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  const PX::VideoFrameRef noise = MakeFrame(RefHost::kBgraFloat, bounds.width, bounds.height,
                                            frame->GetColorSpace().Description());
  std::uniform_real_distribution<float> values(0.0F, 1.0F);
  for (int y = 0; y < bounds.height; ++y) {
    float* row = FloatPixel(noise, 0, y);
    std::generate_n(row, 4 * bounds.width, [&] { return values(random); });
  }
  EXPECT_EQ(Copy(noise, frame), 0);
}

void FillWithColor(const PX::VideoFrameRef& frame, float red, float green, float blue) {
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  for (int y = 0; y < bounds.height; ++y) {
    for (int x = 0; x < bounds.width; ++x) {
      float* pixel = FloatPixel(frame, x, y);
      pixel[0] = blue;
      pixel[1] = green;
      pixel[2] = red;
      pixel[3] = 1.0F;
    }
  }
}

void FillWithGradient(const PX::VideoFrameRef& frame) {
  const orvcore::geom::Bounds bounds = frame->GetBounds();
  for (int y = 0; y < bounds.height; ++y) {
    for (int x = 0; x < bounds.width; ++x) {
      float* pixel = FloatPixel(frame, x, y);
      pixel[0] = 0.5F + 0.5F * std::sin(0.11F * static_cast<float>(x + 2 * y));
      pixel[1] = 0.5F + 0.5F * std::cos(0.07F * static_cast<float>(2 * x - y));
      pixel[2] = 0.5F + 0.5F * std::sin(0.05F * static_cast<float>(x * y % 97));
      pixel[3] = 1.0F;
    }
  }
}

std::vector<std::byte> Samples(const PX::VideoFrameRef& frame) {
  std::vector<std::byte> samples;
  for (int plane = 0; plane < InfoOf(frame->GetPixelFormat()).planeCount; ++plane) {
    for (int row = 0; row < PlaneOf(frame, plane).height; ++row) {
      const std::byte* first = RowOf(frame, plane, row);
      samples.insert(samples.end(), first, first + RowSize(frame, plane));
    }
  }
  return samples;
}

int Copy(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to) {
  return KS::VideoFrameManipulators::CopyFrame(from, to, 4, {});
}
