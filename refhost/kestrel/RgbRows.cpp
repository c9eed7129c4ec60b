#include "refhost/kestrel/RgbRows.h"

#include <algorithm>
#include <array>
#include <cstdint>

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
  const float number = signal == signal ? signal : 0.0F;
  const float above = number < -kMost ? -kMost : number;
  return above > kMost ? kMost : above;
}

void Interleave(const RgbRow& row, int first, int count, float* __restrict pixels) {
  const float* __restrict blue = row.blue + first;
  const float* __restrict green = row.green + first;
  const float* __restrict red = row.red + first;
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    pixels[4 * i] = blue[i];
    pixels[4 * i + 1] = green[i];
    pixels[4 * i + 2] = red[i];
    pixels[4 * i + 3] = 1.0F;
  }
}

void Deinterleave(const float* __restrict pixels, int first, int count, const RgbRow& row) {
  float* __restrict blue = row.blue + first;
  float* __restrict green = row.green + first;
  float* __restrict red = row.red + first;
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    blue[i] = pixels[4 * i];
    green[i] = pixels[4 * i + 1];
    red[i] = pixels[4 * i + 2];
  }
}

/// Whether the stored pixels can be read and written as they are.
bool AreFloats(CHR::ComponentType type, const std::byte* stored) {
  return type == CHR::ComponentType::Float &&
         reinterpret_cast<std::uintptr_t>(stored) % alignof(float) == 0;
}

void DeinterleaveStored(const std::byte* stored, CHR::ComponentType type, int width,
                        const RgbRow& row) {
  Pixels pixels{};
  for (int first = 0; first < width; first += kChunk) {
    const int count = std::min(kChunk, width - first);
    CHR::LoadPixels(type, stored + static_cast<std::size_t>(first) * CHR::PixelBytes(type),
                    static_cast<std::size_t>(count), pixels.data());
    Deinterleave(pixels.data(), first, count, row);
  }
}

void InterleaveStored(const RgbRow& row, int width, CHR::ComponentType type, std::byte* stored) {
  Pixels pixels{};
  for (int first = 0; first < width; first += kChunk) {
    const int count = std::min(kChunk, width - first);
    Interleave(row, first, count, pixels.data());
    CHR::StorePixels(type, pixels.data(), static_cast<std::size_t>(count),
                     stored + static_cast<std::size_t>(first) * CHR::PixelBytes(type));
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
  if (AreFloats(type, stored)) {
    Interleave(from, 0, width, reinterpret_cast<float*>(stored));
  } else {
    InterleaveStored(from, width, type, stored);
  }
}

void LoadRow(const std::byte* stored, CHR::ComponentType type, const CHR::PixelConverter* converter,
             int width, const PlanarBuffer& rgb, int row) {
  const RgbRow to = RowOf(rgb, row);
  if (AreFloats(type, stored)) {
    Deinterleave(reinterpret_cast<const float*>(stored), 0, width, to);
  } else {
    DeinterleaveStored(stored, type, width, to);
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
