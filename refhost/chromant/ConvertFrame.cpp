#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "host/chromant/Conversion.h"
#include "refhost/ResultCodes.h"
#include "refhost/chromant/PixelConverter.h"
#include "refhost/chromant/PixelRows.h"
#include "refhost/orvcore/Bands.h"

using orvmediatypes::PixelFormat;
using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

namespace RefHost {

namespace {

/// Pixels converted at a time, on the stack.
constexpr std::size_t kChunk = 256;
constexpr int kBandRows = 32;

bool HoldsRow(int rowBytes, int width, ComponentType type) {
  return rowBytes >= static_cast<std::int64_t>(width) * static_cast<int>(PixelBytes(type));
}

void ConvertRow(const PixelConverter& converter, const std::byte* source, ComponentType sourceType,
                std::byte* destination, ComponentType destinationType, std::size_t width) {
  std::array<float, 4 * kChunk> pixels{};
  for (std::size_t done = 0; done < width; done += kChunk) {
    const std::size_t count = std::min(kChunk, width - done);
    LoadPixels(sourceType, source + done * PixelBytes(sourceType), count, pixels.data());
    converter.Convert(pixels.data(), pixels.data(), count);
    StorePixels(destinationType, pixels.data(), count,
                destination + done * PixelBytes(destinationType));
  }
}

}  // namespace

}  // namespace RefHost

namespace CHR {

int ConvertFrame(const void* sourcePixels, void* destinationPixels, int width, int height,
                 const ColorSpace& sourceColorSpace, PixelFormat sourceFormat, int sourceRowBytes,
                 const ColorSpace& destinationColorSpace, PixelFormat destinationFormat,
                 int destinationRowBytes, const ColorManagementSettings& settings) {
  if (sourcePixels == nullptr || destinationPixels == nullptr) return RefHost::kInvalidFrame;
  if (width <= 0 || height <= 0) return RefHost::kInvalidFrame;

  const auto sourceType = RefHost::ComponentTypeOf(sourceFormat);
  const auto destinationType = RefHost::ComponentTypeOf(destinationFormat);
  if (!sourceType.has_value() || !destinationType.has_value()) return RefHost::kNotSupported;
  if (height > 1 && !(RefHost::HoldsRow(sourceRowBytes, width, *sourceType) &&
                      RefHost::HoldsRow(destinationRowBytes, width, *destinationType))) {
    return RefHost::kInvalidFrame;
  }

  const auto converter =
      RefHost::MakePixelConverter(sourceColorSpace, destinationColorSpace, settings);
  if (converter == nullptr) return RefHost::kNotSupported;

  const bool inPlace = sourcePixels == destinationPixels && *sourceType == *destinationType;
  if (inPlace && converter->IsIdentity()) return 0;

  const auto* source = static_cast<const std::byte*>(sourcePixels);
  auto* destination = static_cast<std::byte*>(destinationPixels);
  RefHost::RunInBands(height, RefHost::kBandRows, [&](int first, int last) {
    for (std::ptrdiff_t row = first; row < last; ++row) {
      RefHost::ConvertRow(*converter, source + row * sourceRowBytes, *sourceType,
                          destination + row * destinationRowBytes, *destinationType,
                          static_cast<std::size_t>(width));
    }
  });
  return 0;
}

}  // namespace CHR
