#include "tools/quillon/DeltaEItp.h"

#include <cmath>

#include "curves/St2084.h"

ICtCp ICtCpOfNits(double red, double green, double blue) {
  constexpr double kUnit = 1.0 / 4096.0;
  const double l = EncodeSt2084((1688.0 * red + 2146.0 * green + 262.0 * blue) * kUnit);
  const double m = EncodeSt2084((683.0 * red + 2951.0 * green + 462.0 * blue) * kUnit);
  const double s = EncodeSt2084((99.0 * red + 309.0 * green + 3688.0 * blue) * kUnit);
  return {0.5 * l + 0.5 * m, (6610.0 * l - 13613.0 * m + 7003.0 * s) * kUnit,
          (17933.0 * l - 17390.0 * m - 543.0 * s) * kUnit};
}

double DeltaEItp(const ICtCp& a, const ICtCp& b) {
  const double i = a.i - b.i;
  const double ct = a.ct - b.ct;
  const double cp = a.cp - b.cp;
  return 720.0 * std::sqrt(i * i + 0.25 * ct * ct + cp * cp);
}
