#include "refhost/chromant/PixelConverter.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>

#include "refhost/chromant/PlaneRows.h"
#include "refhost/chromant/Primaries.h"
#include "refhost/chromant/TransferCurve.h"
#include "refhost/chromant/rows/ConvertRows.h"
#include "refhost/orvmediatypes/H273.h"

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;

namespace RefHost {

namespace {

constexpr std::size_t kPixelFloats = 4;

/// Pixels worked on at a time, on the stack.
constexpr std::size_t kChunk = 256;

struct Planes {
  std::array<float, kChunk> red;
  std::array<float, kChunk> green;
  std::array<float, kChunk> blue;
};

/// Alpha stays as it is.
void Interleave(const Planes& planes, std::size_t count, float* pixels) {
  for (std::size_t i = 0; i < count; ++i, pixels += kPixelFloats) {
    pixels[0] = planes.blue[i];
    pixels[1] = planes.green[i];
    pixels[2] = planes.red[i];
  }
}

}  // namespace

bool PixelConverter::IsIdentity() const {
  return params_.hasMatrix == 0 && IsSameTransfer(params_.source, params_.destination);
}

void PixelConverter::Convert(const float* source, float* destination, std::size_t pixels) const {
  if (source != destination) std::copy_n(source, pixels * kPixelFloats, destination);
  if (IsIdentity()) return;
  Planes planes{};
  for (std::size_t done = 0; done < pixels; done += kChunk) {
    const std::size_t count = std::min(kChunk, pixels - done);
    float* chunk = destination + done * kPixelFloats;
    SplitPixels(chunk, count, planes.red.data(), planes.green.data(), planes.blue.data());
    ConvertPlanes(planes.red.data(), planes.green.data(), planes.blue.data(), count);
    Interleave(planes, count, chunk);
  }
}

void PixelConverter::ConvertPlanes(float* red, float* green, float* blue,
                                   std::size_t pixels) const {
  if (IsIdentity() || ConvertRows(BestInstructionSet(), params_, red, green, blue, pixels)) return;
  for (std::size_t i = 0; i < pixels; ++i) {
    std::array<float, 3> pixel = {blue[i], green[i], red[i]};
    ConvertPixel(params_, pixel.data());
    blue[i] = pixel[0];
    green[i] = pixel[1];
    red[i] = pixel[2];
  }
}

std::unique_ptr<PixelConverter> MakePixelConverter(const ColorSpace& source,
                                                   const ColorSpace& destination,
                                                   const ColorManagementSettings& settings) {
  const double white = static_cast<std::uint32_t>(settings.GetGraphicsWhiteLuminance());
  const auto sourceTransfer = TransferParamsOf(source, white);
  const auto destinationTransfer = TransferParamsOf(destination, white);
  const auto sourcePrimaries = ChromaticitiesOf(source);
  const auto destinationPrimaries = ChromaticitiesOf(destination);
  if (!sourceTransfer.has_value() || !destinationTransfer.has_value() ||
      !sourcePrimaries.has_value() || !destinationPrimaries.has_value()) {
    return nullptr;
  }

  ConversionParams params{};
  params.source = *sourceTransfer;
  params.destination = *destinationTransfer;
  if (!AreSameChromaticities(*sourcePrimaries, *destinationPrimaries)) {
    const Matrix3 matrix = RgbToRgb(*sourcePrimaries, *destinationPrimaries);
    std::copy(matrix.begin(), matrix.end(), std::begin(params.matrix));
    params.hasMatrix = 1;
    params.hasCommonGrey = HaveCommonGrey(*sourcePrimaries, *destinationPrimaries) ? 1 : 0;
  }
  return std::make_unique<PixelConverter>(params);
}

}  // namespace RefHost
