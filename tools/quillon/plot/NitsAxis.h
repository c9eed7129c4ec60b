#pragma once

#include <string>
#include <vector>

namespace Quillon::Cli {

/// An axis of luminances.
class NitsAxis {
 public:
  enum class Scale { Log, PQ };

  /// A log axis begins at `lowest` nits, a PQ axis at 0.
  NitsAxis(Scale scale, double lowest, double highest);

  /// Where a luminance lies: 0 at the axis's begin, 1 at its end; what lies before the begin, -1 at
  /// the least.
  double Share(double nits) const;
  /// The decades on the axis, 0.1, 1, 10 and so on; on a PQ axis from 0.1 nits.
  std::vector<double> Decades() const;
  double Highest() const { return highest_; }
  Scale Kind() const { return scale_; }

 private:
  Scale scale_;
  double lowest_;
  double highest_;
};

/// A luminance for the reader: "203", "101.5", "0.1".
std::string FormatNits(double nits);

}  // namespace Quillon::Cli
