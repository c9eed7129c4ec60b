#include "bench/quality/Metrics.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "curves/St2084.h"

namespace Quality {

namespace {

constexpr double kChromaFromNits = 100.0;
constexpr double kChromaToNits = 4000.0;
constexpr double kDarkerCodes = 0.1;
constexpr double kBand = 1.5;
constexpr double kSmooth = 0.5;
constexpr double kRounding = 1e-9;

double AngleBetween(double degrees, double others) {
  const double angle = std::abs(degrees - others);
  return std::min(angle, 360.0 - angle);
}

double CodeOf(const Light& light) { return GreyCode(DecodeSt2084(ItpOf(light).i)); }

/// Whether the source changes in a channel by more than rounding.
bool Changes(double from, double to, const Components& scale) {
  constexpr double kChange = 1e-6;
  return std::abs(to - from) > kChange * *std::max_element(scale.begin(), scale.end());
}

bool IsClipped(double code, double next) { return code == next && (code == 0.0 || code == 1.0); }

}  // namespace

HueError MeasureHueError(std::span<const Light> source, std::span<const Light> result) {
  HueError error;
  for (std::size_t i = 0; i < source.size(); ++i) {
    const Polar from = PolarOf(source[i]);
    const Polar to = PolarOf(result[i]);
    if (from.chroma <= kLeastChroma || to.chroma <= kLeastChroma) continue;
    const double degrees = AngleBetween(from.hue, to.hue);
    error.meanDegrees += degrees;
    error.maxDegrees = std::max(error.maxDegrees, degrees);
    ++error.pixels;
  }
  if (error.pixels > 0) error.meanDegrees /= static_cast<double>(error.pixels);
  return error;
}

double MeasureChromaLost(std::span<const Light> source, std::span<const Light> result) {
  const double from = EncodeSt2084(kChromaFromNits) - kRounding;
  const double to = EncodeSt2084(kChromaToNits) + kRounding;
  double lost = 0.0;
  std::size_t pixels = 0;
  for (std::size_t i = 0; i < source.size(); ++i) {
    const Polar before = PolarOf(source[i]);
    if (before.chroma <= kLeastChroma || before.intensity < from || before.intensity > to) continue;
    lost += 1.0 - std::min(1.0, PolarOf(result[i]).chroma / before.chroma);
    ++pixels;
  }
  return pixels > 0 ? lost / static_cast<double>(pixels) : 0.0;
}

OrderViolations CountOrderViolations(std::span<const Light> result) {
  OrderViolations violations;
  double brightest = 0.0;
  for (const Light& light : result) {
    const double code = CodeOf(light);
    brightest = std::max(brightest, code);
    if (brightest - code <= kDarkerCodes) continue;
    ++violations.pixels;
    violations.worstCodes = std::max(violations.worstCodes, brightest - code);
  }
  return violations;
}

std::size_t CountBands(std::span<const Light> source, std::span<const Light> result) {
  std::size_t bands = 0;
  for (std::size_t i = 1; i < source.size(); ++i) {
    const double before = DeltaEItp(ItpOf(source[i - 1]), ItpOf(source[i]));
    const double after = DeltaEItp(ItpOf(result[i - 1]), ItpOf(result[i]));
    if (before <= kSmooth && after > kBand) ++bands;
  }
  return bands;
}

std::size_t CountClipped(std::span<const Light> source, std::span<const Signal> result) {
  std::size_t clipped = 0;
  for (std::size_t i = 1; i < source.size(); ++i) {
    const Components before = ComponentsIn(Gamut::BT709, source[i - 1]);
    const Components after = ComponentsIn(Gamut::BT709, source[i]);
    for (const auto& [channel, code] :
         {std::pair{0, &Signal::red}, std::pair{1, &Signal::green}, std::pair{2, &Signal::blue}}) {
      const auto index = static_cast<std::size_t>(channel);
      if (IsClipped(result[i - 1].*code, result[i].*code) &&
          Changes(before[index], after[index], after)) {
        ++clipped;
      }
    }
  }
  return clipped;
}

Difference MeasureDifference(std::span<const Light> reference, std::span<const Light> result) {
  std::vector<double> differences(reference.size());
  for (std::size_t i = 0; i < reference.size(); ++i) {
    differences[i] = DeltaEItp(ItpOf(reference[i]), ItpOf(result[i]));
  }
  if (differences.empty()) return {};
  Difference difference;
  for (const double each : differences) difference.mean += each;
  difference.mean /= static_cast<double>(differences.size());
  const auto at =
      differences.begin() + static_cast<std::ptrdiff_t>(0.95 * (differences.size() - 1));
  std::nth_element(differences.begin(), at, differences.end());
  difference.percentile95 = *at;
  return difference;
}

}  // namespace Quality
