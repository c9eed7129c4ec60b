#include "tools/quillon/io/RadiancePixels.h"

#include <algorithm>
#include <cmath>

namespace Quillon::Cli {

namespace {

/// Widths for which a scanline may have the run lengths of a component.
constexpr std::size_t kLeastRunWidth = 8;
constexpr std::size_t kMostRunWidth = 32767;

/// A code above this repeats one value; the excess is how often.
constexpr int kRepeat = 128;

}  // namespace

float Rgbe::Unit() const { return exponent == 0 ? 0.0F : std::ldexp(1.0F, exponent - 136); }

void RadianceScanlines::ReadRow(std::span<Rgbe> row) {
  if (AtComponentRuns(row.size())) {
    ReadComponentRuns(row);
  } else {
    ReadPixels(row);
  }
}

std::uint8_t RadianceScanlines::NextByte() {
  if (position_ >= source_.bytes.size()) FailDamaged(source_, "it ends too early");
  return source_.bytes[position_++];
}

bool RadianceScanlines::AtComponentRuns(std::size_t width) const {
  const auto& bytes = source_.bytes;
  return width >= kLeastRunWidth && width <= kMostRunWidth && bytes.size() - position_ >= 4 &&
         bytes[position_] == 2 && bytes[position_ + 1] == 2 && bytes[position_ + 2] < 128;
}

void RadianceScanlines::ReadComponentRuns(std::span<Rgbe> row) {
  position_ += 2;
  const std::size_t high = NextByte();
  if ((high << 8 | NextByte()) != row.size()) FailDamaged(source_, "a scanline of another width");
  component_.resize(row.size());
  for (std::uint8_t Rgbe::*component : {&Rgbe::red, &Rgbe::green, &Rgbe::blue, &Rgbe::exponent}) {
    ReadComponent(component_);
    for (std::size_t x = 0; x < row.size(); ++x) row[x].*component = component_[x];
  }
}

void RadianceScanlines::ReadComponent(std::span<std::uint8_t> values) {
  while (!values.empty()) {
    const int code = NextByte();
    const bool repeats = code > kRepeat;
    const auto count = static_cast<std::size_t>(repeats ? code - kRepeat : code);
    if (count == 0 || count > values.size()) FailDamaged(source_, "a run of impossible length");
    if (repeats) {
      std::fill_n(values.begin(), count, NextByte());
    } else {
      std::generate_n(values.begin(), count, [this] { return NextByte(); });
    }
    values = values.subspan(count);
  }
}

void RadianceScanlines::ReadPixels(std::span<Rgbe> row) {
  std::size_t x = 0;
  int shift = 0;
  while (x < row.size()) {
    Rgbe pixel{};
    pixel.red = NextByte();
    pixel.green = NextByte();
    pixel.blue = NextByte();
    pixel.exponent = NextByte();
    const bool repeats = pixel.red == 1 && pixel.green == 1 && pixel.blue == 1;
    if (!repeats) {
      row[x++] = pixel;
      shift = 0;
      continue;
    }
    if (x == 0 || shift > 16) FailDamaged(source_, "a run of impossible length");
    const std::size_t count = std::size_t{pixel.exponent} << shift;
    if (count > row.size() - x) FailDamaged(source_, "a run of impossible length");
    std::fill_n(row.begin() + static_cast<std::ptrdiff_t>(x), count, row[x - 1]);
    x += count;
    shift += 8;
  }
}

}  // namespace Quillon::Cli
