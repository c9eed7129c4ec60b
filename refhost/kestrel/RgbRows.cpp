#include "refhost/kestrel/RgbRows.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace KS {

namespace {

/// Pixels worked on at a time, on the stack.
constexpr int kChunk = 256;
using Pixels = std::array<float, std::size_t{4} * kChunk>;

struct RgbRow {
  float* red;
  float* green;
  float* blue;
};

RgbRow RowOf(const PlanarBuffer& rgb, int row) {
  return {rgb.Row<float>(0, row), rgb.Row<float>(1, row), rgb.Row<float>(2, row)};
}

/// Far beyond every code, and small enough for a matrix to stay finite.
float Bounded(float signal) {
  constexpr float kMost = 1e6F;
  return std::isnan(signal) ? 0.0F : std::clamp(signal, -kMost, kMost);
}

void Interleave(const RgbRow& row, int first, int count, float* pixels) {
  for (int i = 0; i < count; ++i, pixels += 4) {
    pixels[0] = row.blue[first + i];
    pixels[1] = row.green[first + i];
    pixels[2] = row.red[first + i];
    pixels[3] = 1.0F;
  }
}

void Deinterleave(const float* pixels, int first, int count, const RgbRow& row) {
  for (int i = 0; i < count; ++i, pixels += 4) {
    row.blue[first + i] = Bounded(pixels[0]);
    row.green[first + i] = Bounded(pixels[1]);
    row.red[first + i] = Bounded(pixels[2]);
  }
}

void RepeatLastPixel(const RgbRow& row, int width, int bufferWidth) {
  for (float* samples : {row.red, row.green, row.blue}) {
    std::fill(samples + width, samples + bufferWidth, samples[width - 1]);
  }
}

void Convert(const CHR::PixelConverter* converter, Pixels& pixels, int count) {
  if (converter == nullptr) return;
  converter->Convert(pixels.data(), pixels.data(), static_cast<std::size_t>(count));
}

}  // namespace

void StoreRow(const PlanarBuffer& rgb, int row, int width, const CHR::PixelConverter* converter,
              CHR::ComponentType type, std::byte* stored) {
  const RgbRow from = RowOf(rgb, row);
  Pixels pixels{};
  for (int first = 0; first < width; first += kChunk) {
    const int count = std::min(kChunk, width - first);
    Interleave(from, first, count, pixels.data());
    Convert(converter, pixels, count);
    CHR::StorePixels(type, pixels.data(), static_cast<std::size_t>(count),
                     stored + static_cast<std::size_t>(first) * CHR::PixelBytes(type));
  }
}

void LoadRow(const std::byte* stored, CHR::ComponentType type, const CHR::PixelConverter* converter,
             int width, const PlanarBuffer& rgb, int row) {
  const RgbRow to = RowOf(rgb, row);
  Pixels pixels{};
  for (int first = 0; first < width; first += kChunk) {
    const int count = std::min(kChunk, width - first);
    CHR::LoadPixels(type, stored + static_cast<std::size_t>(first) * CHR::PixelBytes(type),
                    static_cast<std::size_t>(count), pixels.data());
    Convert(converter, pixels, count);
    Deinterleave(pixels.data(), first, count, to);
  }
  RepeatLastPixel(to, width, rgb.Width(0));
}

void ConvertRow(const PlanarBuffer& rgb, int row, int width, const CHR::PixelConverter& converter) {
  const RgbRow planes = RowOf(rgb, row);
  Pixels pixels{};
  for (int first = 0; first < width; first += kChunk) {
    const int count = std::min(kChunk, width - first);
    Interleave(planes, first, count, pixels.data());
    Convert(&converter, pixels, count);
    Deinterleave(pixels.data(), first, count, planes);
  }
  RepeatLastPixel(planes, width, rgb.Width(0));
}

void RepeatRow(const PlanarBuffer& rgb, int from, int to) {
  for (int plane = 0; plane < 3; ++plane) {
    std::copy_n(rgb.Row<float>(plane, from), rgb.Width(plane), rgb.Row<float>(plane, to));
  }
}

}  // namespace KS
