#include "mapper/LightHistogram.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace Quillon::Mapper {

namespace {

/// Bins follow the bits of a float, from 2^-12 nits to infinity; all that is darker is in the
/// first.
constexpr std::uint32_t kBinShift = 17;
constexpr std::uint32_t kFirstBits = std::uint32_t{127 - 12} << 23;
constexpr std::uint32_t kInfinityBits = std::uint32_t{255} << 23;
constexpr std::size_t kBinCount = ((kInfinityBits - kFirstBits) >> kBinShift) + 1;

std::size_t BinOf(float nits) {
  const auto bits = std::bit_cast<std::uint32_t>(nits);
  return bits < kFirstBits ? 0 : (std::min(bits, kInfinityBits) - kFirstBits) >> kBinShift;
}

}  // namespace

LightHistogram::LightHistogram() : counts_(kBinCount), brightest_(kBinCount) {}

void LightHistogram::Add(std::span<const float> nits) {
  for (const float light : nits) {
    const std::size_t bin = BinOf(light);
    ++counts_[bin];
    brightest_[bin] = std::max(brightest_[bin], light);
    sum_ += light;
  }
  pixels_ += static_cast<std::int64_t>(nits.size());
}

double LightHistogram::PeakNits() const {
  return *std::max_element(brightest_.begin(), brightest_.end());
}

double LightHistogram::AverageNits() const {
  return pixels_ == 0 ? 0.0 : sum_ / static_cast<double>(pixels_);
}

double LightHistogram::PercentileNits(double percent) const {
  constexpr double kRounding = 1e-6;  // of the product, in pixels
  const double wanted = percent / 100.0 * static_cast<double>(pixels_) - kRounding;
  std::int64_t counted = 0;
  for (std::size_t bin = 0; bin < kBinCount; ++bin) {
    counted += counts_[bin];
    if (counts_[bin] > 0 && static_cast<double>(counted) >= wanted) return brightest_[bin];
  }
  return 0.0;
}

std::vector<double> LightHistogram::Shares() const {
  std::vector<double> shares(counts_.begin(), counts_.end());
  for (double& share : shares) share /= static_cast<double>(pixels_);
  return shares;
}

}  // namespace Quillon::Mapper
