#include "tools/quillon/io/PngChunks.h"

#include <algorithm>
#include <cmath>

namespace Quillon::Cli {

using orvmediatypes::color::Chromaticities;
using orvmediatypes::color::Chromaticity;
using orvmediatypes::color::ColorDescription;

namespace {

constexpr double kChromaticityUnit = 0.00002;
constexpr double kNitsUnit = 0.0001;

class BigEndianReader {
 public:
  explicit BigEndianReader(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  std::uint32_t Next(int count) {
    std::uint32_t value = 0;
    for (int i = 0; i < count; ++i) value = value << 8 | bytes_[position_++];
    return value;
  }
  double NextCoordinate() { return Next(2) * kChromaticityUnit; }
  float NextNits() { return static_cast<float>(Next(4) * kNitsUnit); }

 private:
  std::span<const std::uint8_t> bytes_;
  std::size_t position_ = 0;
};

class BigEndianWriter {
 public:
  explicit BigEndianWriter(std::span<std::uint8_t> bytes) : bytes_(bytes) {}

  void Put(double value, int count) {
    const double largest = count == 2 ? 65535.0 : 4294967295.0;
    const auto whole = static_cast<std::uint32_t>(
        std::isnan(value) ? 0.0 : std::clamp(std::round(value), 0.0, largest));
    for (int shift = 8 * (count - 1); shift >= 0; shift -= 8) {
      bytes_[position_++] = static_cast<std::uint8_t>(whole >> shift & 0xFFU);
    }
  }
  void PutCoordinate(double value) { Put(value / kChromaticityUnit, 2); }
  void PutNits(double value) { Put(value / kNitsUnit, 4); }

 private:
  std::span<std::uint8_t> bytes_;
  std::size_t position_ = 0;
};

template <class Mastering>
auto CoordinatesInFileOrder(Mastering& colors) {
  return std::array{&colors.red, &colors.green, &colors.blue, &colors.white};
}

}  // namespace

std::optional<PngCicp> ParseCicp(std::span<const std::uint8_t> chunk) {
  PngCicp cicp{};
  if (chunk.size() != cicp.size()) return std::nullopt;
  std::copy(chunk.begin(), chunk.end(), cicp.begin());
  return cicp;
}

bool ParseMdcv(std::span<const std::uint8_t> chunk, ColorDescription& description) {
  if (chunk.size() != PngMdcv{}.size()) return false;
  BigEndianReader reader(chunk);
  for (Chromaticity* point : CoordinatesInFileOrder(description.masteringChromaticities)) {
    point->x = reader.NextCoordinate();
    point->y = reader.NextCoordinate();
  }
  description.masteringMaxLuminance = reader.NextNits();
  description.masteringMinLuminance = reader.NextNits();
  return true;
}

std::optional<ContentLight> ParseClli(std::span<const std::uint8_t> chunk) {
  if (chunk.size() != PngClli{}.size()) return std::nullopt;
  BigEndianReader reader(chunk);
  ContentLight light;
  light.maxCLL = reader.NextNits();
  light.maxFALL = reader.NextNits();
  return light;
}

PngMdcv FormatMdcv(const ColorDescription& description) {
  PngMdcv chunk{};
  BigEndianWriter writer(chunk);
  for (const Chromaticity* point : CoordinatesInFileOrder(description.masteringChromaticities)) {
    writer.PutCoordinate(point->x);
    writer.PutCoordinate(point->y);
  }
  writer.PutNits(description.masteringMaxLuminance);
  writer.PutNits(description.masteringMinLuminance);
  return chunk;
}

PngClli FormatClli(const ContentLight& light) {
  PngClli chunk{};
  BigEndianWriter writer(chunk);
  writer.PutNits(light.maxCLL);
  writer.PutNits(light.maxFALL);
  return chunk;
}

}  // namespace Quillon::Cli
