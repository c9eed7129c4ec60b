#include "refhost/kestrel/RgbRows.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "refhost/chromant/PlaneRows.h"

namespace RefHost {

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

/// What begins at a column.
RgbRow From(const RgbRow& row, int first) {
  return {row.red + first, row.green + first, row.blue + first};
}

/// Whether the stored pixels can be read and written as they are.
bool AreFloats(ComponentType type, const std::byte* stored) {
  return type == ComponentType::Float &&
         reinterpret_cast<std::uintptr_t>(stored) % alignof(float) == 0;
}

void Load(const std::byte* stored, ComponentType type, std::size_t count, const RgbRow& row) {
  if (AreFloats(type, stored)) {
    SplitPixels(reinterpret_cast<const float*>(stored), count, row.red, row.green, row.blue);
    return;
  }
  Pixels pixels;
  LoadPixels(type, stored, count, pixels.data());
  SplitPixels(pixels.data(), count, row.red, row.green, row.blue);
}

void Store(const RgbRow& row, std::size_t count, ComponentType type, std::byte* stored) {
  if (AreFloats(type, stored)) {
    JoinPixels(row.red, row.green, row.blue, count, reinterpret_cast<float*>(stored));
    return;
  }
  Pixels pixels;
  JoinPixels(row.red, row.green, row.blue, count, pixels.data());
  StorePixels(type, pixels.data(), count, stored);
}

/// Far beyond every code, and small enough for a matrix to stay finite.
void Bound(const RgbRow& row, std::size_t count) {
  constexpr float kMost = 1e6F;
  for (float* samples : {row.red, row.green, row.blue}) BoundSamples(samples, count, kMost);
}

void RepeatLastPixel(const RgbRow& row, int width, int bufferWidth) {
  for (float* samples : {row.red, row.green, row.blue}) {
    std::fill(samples + width, samples + bufferWidth, samples[width - 1]);
  }
}

void Convert(const PixelConverter* converter, const RgbRow& row, std::size_t count) {
  if (converter != nullptr) converter->ConvertPlanes(row.red, row.green, row.blue, count);
}

/// Calls the work with the first column of each chunk and its number of pixels.
template <class Work>
void InChunks(int width, const Work& work) {
  for (int first = 0; first < width; first += kChunk) {
    work(first, static_cast<std::size_t>(std::min(kChunk, width - first)));
  }
}

std::size_t BytesOf(ComponentType type, int pixels) {
  return static_cast<std::size_t>(pixels) * PixelBytes(type);
}

}  // namespace

void StoreRow(const PlanarBuffer& rgb, int row, int width, const PixelConverter* converter,
              ComponentType type, std::byte* stored) {
  const RgbRow from = RowOf(rgb, row);
  InChunks(width, [&](int first, std::size_t count) {
    const RgbRow chunk = From(from, first);
    Convert(converter, chunk, count);
    Store(chunk, count, type, stored + BytesOf(type, first));
  });
}

void LoadRow(const std::byte* stored, ComponentType type, const PixelConverter* converter,
             int width, const PlanarBuffer& rgb, int row) {
  const RgbRow to = RowOf(rgb, row);
  InChunks(width, [&](int first, std::size_t count) {
    const RgbRow chunk = From(to, first);
    Load(stored + BytesOf(type, first), type, count, chunk);
    Convert(converter, chunk, count);
    Bound(chunk, count);
  });
  RepeatLastPixel(to, width, rgb.Width(0));
}

void ConvertRow(const PlanarBuffer& rgb, int row, int width, const PixelConverter& converter) {
  const RgbRow planes = RowOf(rgb, row);
  InChunks(width, [&](int first, std::size_t count) {
    const RgbRow chunk = From(planes, first);
    Convert(&converter, chunk, count);
    Bound(chunk, count);
  });
  RepeatLastPixel(planes, width, rgb.Width(0));
}

void RepeatRow(const PlanarBuffer& rgb, int from, int to) {
  for (int plane = 0; plane < 3; ++plane) {
    std::copy_n(rgb.Row<float>(plane, from), rgb.Width(plane), rgb.Row<float>(plane, to));
  }
}

}  // namespace RefHost
