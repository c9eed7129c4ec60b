#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace Quillon {
namespace [[gnu::visibility("default")]] Mapper {

/// Pixels counted by the logarithm of their light, 64 bins to an octave, whatever the light. One
/// thread.
class LightHistogram {
 public:
  LightHistogram();

  /// Counts pixels by their light in nits, which is not below 0.
  void Add(std::span<const float> nits);

  double PeakNits() const;
  double AverageNits() const;
  /// Light of a pixel that at least `percent` % of the pixels, above 0 to 100, do not exceed. It
  /// may be up to 1.6 % above the least such light; for 100 it is the peak.
  double PercentileNits(double percent) const;
  /// The share of the pixels in each bin.
  std::vector<double> Shares() const;
  static constexpr double kBinsPerStop = 64.0;

 private:
  std::vector<std::uint32_t> counts_;
  std::vector<float> brightest_;  ///< of each bin
  std::int64_t pixels_ = 0;
  double sum_ = 0.0;
};

}  // namespace Mapper
}  // namespace Quillon
