#include "tools/quillon/plot/NitsAxis.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "curves/St2084.h"

namespace Quillon::Cli {

NitsAxis::NitsAxis(Scale scale, double lowest, double highest)
    : scale_(scale), lowest_(lowest), highest_(highest) {}

double NitsAxis::Share(double nits) const {
  if (scale_ == Scale::PQ) return EncodeSt2084(nits) / EncodeSt2084(highest_);
  if (!(nits > 0.0)) return -1.0;
  return std::max(-1.0, std::log10(nits / lowest_) / std::log10(highest_ / lowest_));
}

std::vector<double> NitsAxis::Decades() const {
  constexpr double kFirstOnPQ = 0.1;
  constexpr double kTolerance = 1.0 + 1e-6;
  const double first = scale_ == Scale::PQ ? kFirstOnPQ : lowest_;
  std::vector<double> decades;
  for (int power = static_cast<int>(std::lround(std::log10(first)));
       std::pow(10.0, power) <= highest_ * kTolerance; ++power) {
    decades.push_back(std::pow(10.0, power));
  }
  return decades;
}

std::string FormatNits(double nits) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), nits >= 1000.0 ? "%.0f" : "%.4g", nits);
  return text.data();
}

}  // namespace Quillon::Cli
