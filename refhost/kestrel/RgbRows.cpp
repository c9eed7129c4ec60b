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
  for (int i = first; i < first + count; ++i, pixels += 4) {
    pixels[0] = row.blue[i];
    pixels[1] = row.green[i];
    pixels[2] = row.red[i];
    pixels[3] = 1.0F;
  }
}

void Deinterleave(const float* pixels, int first, int count, const RgbRow& row) {
  for (int i = first; i < first + count; ++i, pixels += 4) {
    row.blue[i] = pixels[0];
    row.green[i] = pixels[1];
    row.red[i] = pixels[2];
  }
}

void Bound(const RgbRow& row, int width) {
  for (float* samples : {row.red, row.green, row.blue}) {
    std::transform(samples, samples + width, samples, Bounded);
  }
}

void RepeatLastPixel(const RgbRow& row, int width, int bufferWidth) {
  for (float* samples : {row.red, row.green, row.blue}) {
    std::fill(samples + width, samples + bufferWidth, samples[width - 1]);
  }
}

void Convert(const CHR::PixelConverter* converter, const RgbRow& row, int width) {
  if (converter == nullptr) return;
  converter->ConvertPlanes(row.red, row.green, row.blue, static_cast<std::size_t>(width));
}

}  // namespace

void StoreRow(const PlanarBuffer& rgb, int row, int width, const CHR::PixelConverter* converter,
              CHR::ComponentType type, std::byte* stored) {
  const RgbRow from = RowOf(rgb, row);
  Convert(converter, from, width);
  Pixels pixels{};
  for (int first = 0; first < width; first += kChunk) {
    const int count = std::min(kChunk, width - first);
    Interleave(from, first, count, pixels.data());
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
    Deinterleave(pixels.data(), first, count, to);
  }
  Convert(converter, to, width);
  Bound(to, width);
  RepeatLastPixel(to, width, rgb.Width(0));
}

void ConvertRow(const PlanarBuffer& rgb, int row, int width, const CHR::PixelConverter& converter) {
  const RgbRow planes = RowOf(rgb, row);
  Convert(&converter, planes, width);
  Bound(planes, width);
  RepeatLastPixel(planes, width, rgb.Width(0));
}

void RepeatRow(const PlanarBuffer& rgb, int from, int to) {
  for (int plane = 0; plane < 3; ++plane) {
    std::copy_n(rgb.Row<float>(plane, from), rgb.Width(plane), rgb.Row<float>(plane, to));
  }
}

}  // namespace KS
