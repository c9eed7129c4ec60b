// Powers, logarithms and exponentials in double precision beside MPFR's, which are right to the
// last of their 120 bits.

#include <algorithm>
#include <cmath>
#include <random>

#include <gtest/gtest.h>
#include <mpfr.h>

#include "curves/math64.h"

namespace {

class Number {
 public:
  explicit Number(double value = 0.0) {
    mpfr_init2(value_, 120);
    mpfr_set_d(value_, value, MPFR_RNDN);
  }
  Number(const Number&) = delete;
  Number& operator=(const Number&) = delete;
  ~Number() { mpfr_clear(value_); }
  operator mpfr_ptr() { return value_; }

 private:
  mpfr_t value_;
};

/// Relative to the truth; 0 for a truth beyond 2^-1019 and 2^1019.
double ErrorOf(double value, Number& truth) {
  const double magnitude = std::abs(mpfr_get_d(truth, MPFR_RNDN));
  if (magnitude < 0x1p-1019 || magnitude > 0x1p1019) return 0.0;
  Number error(value);
  mpfr_sub(error, error, truth, MPFR_RNDN);
  mpfr_div(error, error, truth, MPFR_RNDN);
  return std::abs(mpfr_get_d(error, MPFR_RNDN));
}

double ErrorOfPower(double x, double y) {
  Number base(x);
  Number exponent(y);
  Number truth;
  mpfr_pow(truth, base, exponent, MPFR_RNDN);
  return ErrorOf(Power64(x, y), truth);
}

/// The largest error of powers with exponents between these magnitudes, of bases that have one.
double LargestErrorOfPowers(double from, double to, int calls) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  double largest = 0.0;
  for (int i = 0; i < calls; ++i) {
    const double y = (from + (to - from) * unit(random)) * (i % 2 == 0 ? 1.0 : -1.0);
    const double reach = std::min(1000.0 / std::abs(y), i % 3 == 0 ? 1.0 : 1000.0);
    const double x = std::exp2((2.0 * unit(random) - 1.0) * reach);
    largest = std::max(largest, ErrorOfPower(x, y));
  }
  return largest;
}

TEST(CurveMathBesideMpfr, PowersLieWithinTwoToTheMinus37ForExponentsTo80) {
  EXPECT_LT(LargestErrorOfPowers(0.0, 1.0, 100000), 0x1p-37);
  EXPECT_LT(LargestErrorOfPowers(1.0, 80.0, 200000), 0x1p-37);
  EXPECT_GT(LargestErrorOfPowers(64.0, 80.0, 100000), 0x1p-38)
      << "the bound is no wider than is true";
}

TEST(CurveMathBesideMpfr, PowersLieWithinTwoToTheMinus33AndAHalfForAllExponents) {
  const double bound = std::exp2(-33.5);
  EXPECT_LT(LargestErrorOfPowers(80.0, 1000.0, 100000), bound);
  EXPECT_LT(LargestErrorOfPowers(1000.0, 4000.0, 200000), bound);
  EXPECT_LT(LargestErrorOfPowers(4000.0, 1e9, 100000), bound);
  const double known = ErrorOfPower(0x1.6fe8dd0e0c99ep-1, 0x1.004d8fc99f2d4p+11);
  EXPECT_GT(known, 0x1p-34);
  EXPECT_LT(known, bound);
}

TEST(CurveMathBesideMpfr, LogarithmsLieWithinTwoToTheMinus43AndExponentialsWithin37) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  double logarithms = 0.0;
  double exponentials = 0.0;
  for (int i = 0; i < 200000; ++i) {
    const double reach = i % 2 == 0 ? 1000.0 : std::exp2(-50.0 * std::abs(unit(random)));
    Number x(std::exp2(unit(random) * reach));
    Number truth;
    mpfr_log(truth, x, MPFR_RNDN);
    logarithms = std::max(logarithms, ErrorOf(Logarithm64(mpfr_get_d(x, MPFR_RNDN)), truth));
    Number y(unit(random) * 700.0);
    mpfr_exp(truth, y, MPFR_RNDN);
    exponentials = std::max(exponentials, ErrorOf(Exponential64(mpfr_get_d(y, MPFR_RNDN)), truth));
  }
  EXPECT_LT(logarithms, 0x1p-43);
  EXPECT_LT(exponentials, 0x1p-37);
}

}  // namespace
