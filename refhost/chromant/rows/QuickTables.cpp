#include "refhost/chromant/rows/QuickTables.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "curves/St2084.h"

namespace RefHost {

namespace {

constexpr std::size_t kTerms = 11;
using Series = std::array<double, kTerms>;

/// Coefficients of the Chebyshev polynomial of a degree.
Series Chebyshev(std::size_t degree) {
  Series last{1.0};
  Series polynomial{0.0, 1.0};
  for (std::size_t n = 1; n < degree; ++n) {
    Series next{};
    for (std::size_t k = 0; k + 1 < kTerms; ++k) next[k + 1] = 2.0 * polynomial[k];
    for (std::size_t k = 0; k < kTerms; ++k) next[k] -= last[k];
    last = polynomial;
    polynomial = next;
  }
  return polynomial;
}

/// Brings a power series down to a degree, at the least cost for arguments up to `reach`.
void Economise(Series& series, std::size_t degree, double reach) {
  for (std::size_t n = kTerms - 1; n > degree; --n) {
    const Series polynomial = Chebyshev(n);
    const double factor = series[n] / polynomial[n];
    for (std::size_t k = 0; k <= n; ++k) {
      series[k] -= factor * polynomial[k] * std::pow(reach, static_cast<double>(n - k));
    }
  }
}

constexpr double kHalfPart = 0.5 / kParts;

double Middle(int part) { return 1.0 + static_cast<double>(part) / kParts + kHalfPart; }

/// The power of two that an index stands for.
double Exponent(int index) { return index - (kHalvings - 1); }

QuickPowerTable MakePower(double y) {
  QuickPowerTable table{};
  for (int part = 0; part < kParts; ++part) {
    Series series{};
    double binomial = 1.0;
    for (std::size_t k = 0; k < kTerms; ++k) {
      const auto order = static_cast<double>(k);
      series[k] = binomial * std::pow(Middle(part), y - order);
      binomial *= (y - order) / (order + 1.0);
    }
    Economise(series, QuickPowerTable::kDegree, kHalfPart);
    for (int k = 0; k <= QuickPowerTable::kDegree; ++k) {
      table.series[k][part] = series[static_cast<std::size_t>(k)];
    }
  }
  for (int i = 0; i < kHalvings; ++i) table.ofExponent[i] = std::exp2(y * Exponent(i));
  return table;
}

/// The series of Exp2OfModerate begins like that of e^(kUnit x), where kUnit is not quite the
/// logarithm of 2. What is then still between them hardly changes within an octave.
QuickPowerTable MakePQSignalPower() {
  constexpr double kUnit = 0x1.62e42fef9adc8p-1;
  const double y = 1.0 / QUILLON_ST2084_M2;
  const double nearY = y * kUnit / std::log(2.0);
  QuickPowerTable table = MakePower(nearY);
  for (int i = 0; i < kHalvings; ++i) {
    table.ofExponent[i] = Exp2OfModerate(y * (Exponent(i) + 0.5)) / std::exp2(0.5 * nearY);
  }
  return table;
}

}  // namespace

const QuickTables& GetQuickTables() {
  static const QuickTables kTables = {MakePQSignalPower(), MakePower(1.0 / QUILLON_ST2084_M1),
                                      MakePower(1.0 / 2.4)};
  return kTables;
}

}  // namespace RefHost
