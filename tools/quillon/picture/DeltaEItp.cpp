#include "tools/quillon/picture/DeltaEItp.h"

#include <algorithm>
#include <cmath>

#include "curves/St2084.h"

namespace Quillon::Cli {

ICtCp ICtCpOfNits(double red, double green, double blue) {
  const double r = std::max(red, 0.0);
  const double g = std::max(green, 0.0);
  const double b = std::max(blue, 0.0);
  const double l = EncodeSt2084((1688.0 * r + 2146.0 * g + 262.0 * b) / 4096.0);
  const double m = EncodeSt2084((683.0 * r + 2951.0 * g + 462.0 * b) / 4096.0);
  const double s = EncodeSt2084((99.0 * r + 309.0 * g + 3688.0 * b) / 4096.0);
  return {0.5 * l + 0.5 * m, (6610.0 * l - 13613.0 * m + 7003.0 * s) / 4096.0,
          (17933.0 * l - 17390.0 * m - 543.0 * s) / 4096.0};
}

double DeltaEItp(const ICtCp& a, const ICtCp& b) {
  const double i = a.i - b.i;
  const double t = 0.5 * (a.ct - b.ct);
  const double p = a.cp - b.cp;
  return 720.0 * std::sqrt(i * i + t * t + p * p);
}

}  // namespace Quillon::Cli
