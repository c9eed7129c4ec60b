#include "tests/mapper/OwnPicture.h"

#include <array>
#include <random>

using Quillon::Mapper::PixelFormat;

namespace {

constexpr std::byte kUntouched{0xA5};
constexpr std::int32_t kPadding = 20;

int SampleBytes(const PixelFormat& format) { return format.bits == 32 ? 4 : (format.bits + 7) / 8; }

struct PlaneSize {
  int samples = 0;  // a row
  int rows = 0;
};

PlaneSize SizeOf(const PixelFormat& format, int width, int height, std::size_t plane) {
  if (format.layout == PixelFormat::Layout::BGRA) {
    return plane == 0 ? PlaneSize{4 * width, height} : PlaneSize{};
  }
  if (plane == 0) return {width, height};
  const bool pairs = format.layout == PixelFormat::Layout::SemiPlanar;
  if (pairs && plane == 2) return {};
  const int across = format.chroma == PixelFormat::Chroma::C444 ? width : (width + 1) / 2;
  const int down = format.chroma == PixelFormat::Chroma::C420 ? (height + 1) / 2 : height;
  return {pairs ? 2 * across : across, down};
}

}  // namespace

OwnPicture::OwnPicture(PixelFormat format, int width, int height)
    : shown_{.format = format, .width = width, .height = height} {
  std::array<std::size_t, 3> offsets{};
  std::size_t bytes = 0;
  for (std::size_t i = 0; i < 3; ++i) {
    const PlaneSize size = SizeOf(format, width, height, i);
    offsets[i] = bytes;
    if (size.rows == 0) continue;
    shown_.rowBytes[i] = size.samples * SampleBytes(format) + kPadding;
    bytes += static_cast<std::size_t>(shown_.rowBytes[i]) * static_cast<std::size_t>(size.rows);
  }
  bytes_.assign(bytes, kUntouched);
  for (std::size_t i = 0; i < 3; ++i) {
    if (shown_.rowBytes[i] > 0) shown_.planes[i] = bytes_.data() + offsets[i];
  }
}

Quillon::Mapper::ConstPicture OwnPicture::Read() const {
  Quillon::Mapper::ConstPicture read{.format = shown_.format,
                                     .width = shown_.width,
                                     .height = shown_.height,
                                     .rowBytes = shown_.rowBytes};
  for (std::size_t i = 0; i < 3; ++i) read.planes[i] = shown_.planes[i];
  return read;
}

std::uint16_t& OwnPicture::Word(int plane, int x, int y) {
  const auto i = static_cast<std::size_t>(plane);
  auto* row = static_cast<std::byte*>(shown_.planes[i]) + std::ptrdiff_t{y} * shown_.rowBytes[i];
  return reinterpret_cast<std::uint16_t*>(row)[x];
}

float* OwnPicture::Floats(int x, int y) {
  auto* row = static_cast<std::byte*>(shown_.planes[0]) + std::ptrdiff_t{y} * shown_.rowBytes[0];
  return reinterpret_cast<float*>(row) + std::ptrdiff_t{4} * x;
}

void OwnPicture::FillAtRandom(unsigned seed) {
  std::mt19937 random(seed);
  const PixelFormat& format = shown_.format;
  const int shift =
      format.layout == PixelFormat::Layout::SemiPlanar && format.bits > 8 ? 16 - format.bits : 0;
  for (std::size_t i = 0; i < 3; ++i) {
    const PlaneSize size = SizeOf(format, shown_.width, shown_.height, i);
    for (int y = 0; y < size.rows; ++y) {
      auto* row =
          static_cast<std::byte*>(shown_.planes[i]) + std::ptrdiff_t{y} * shown_.rowBytes[i];
      for (int x = 0; x < size.samples; ++x) {
        const auto code = static_cast<std::uint32_t>(random());
        if (format.bits == 32) {
          reinterpret_cast<float*>(row)[x] = static_cast<float>(code >> 8U) * 0x1p-24F;
        } else if (format.bits > 8) {
          reinterpret_cast<std::uint16_t*>(row)[x] =
              static_cast<std::uint16_t>((code & ((1U << format.bits) - 1U)) << shift);
        } else {
          row[x] = static_cast<std::byte>(code);
        }
      }
    }
  }
}
