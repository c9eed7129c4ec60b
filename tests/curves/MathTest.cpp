#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "curves/math.h"
#include "curves/math64.h"

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// Special values and their neighbours, whole numbers odd and even, and what lies between.
const std::vector<float>& NotableFloats() {
  static const std::vector<float> kFloats = [] {
    std::vector<float> floats;
    for (const float value : {0.0F,
                              0x1p-149F,
                              0x1.fffffcp-127F,
                              0x1p-126F,
                              1e-15F,
                              0.25F,
                              0.4166F,
                              0.5F,
                              0x1.fffffep-1F,
                              1.0F,
                              0x1.000002p0F,
                              1.25F,
                              1.5F,
                              2.0F,
                              2.4F,
                              3.0F,
                              33.0F,
                              88.7F,
                              103.9F,
                              126.0F,
                              128.0F,
                              150.0F,
                              0x1.fffffap22F,
                              0x1.fffffep22F,
                              0x1.000002p23F,
                              0x1.fffffep23F,
                              0x1p24F,
                              0x1.000002p24F,
                              1e10F,
                              1e30F,
                              0x1.fffffep127F,
                              kInfinity}) {
      floats.push_back(value);
      floats.push_back(-value);
    }
    floats.push_back(std::numeric_limits<float>::quiet_NaN());
    return floats;
  }();
  return kFloats;
}

/// Distance from the true value in units of its last place.
double UlpsFrom(double truth, float value) {
  int exponent = 0;
  std::frexp(truth, &exponent);
  return std::abs(value - truth) / std::ldexp(1.0, std::max(exponent, -125) - 24);
}

/// Same number, infinity with its sign, zero with its sign, or both not numbers; where the truth is
/// an ordinary float, within half a unit of its last place and a little.
void ExpectResult(double truth, float value, const std::string& call) {
  const auto nearest = static_cast<float>(truth);
  if (std::isnan(nearest)) {
    EXPECT_TRUE(std::isnan(value)) << call << " gives " << value;
  } else if (std::isinf(nearest) || nearest == 0.0F) {
    EXPECT_EQ(std::bit_cast<std::uint32_t>(value), std::bit_cast<std::uint32_t>(nearest)) << call;
  } else {
    EXPECT_LE(UlpsFrom(truth, value), 0.5001) << call << " gives " << value;
  }
}

std::string CallText(const char* name, float x, float y) {
  std::ostringstream text;
  text << std::hexfloat << name << '(' << x << ", " << y << ')';
  return text.str();
}

/// Calls with every `step`-th float there is.
void ForFloats(std::uint32_t step, const std::function<void(float)>& call) {
  for (std::uint64_t bits = 0; bits <= 0xffffffffU; bits += step) {
    call(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
  }
}

TEST(CurveMath, PowersOfNotableFloatsAreThoseOfTheCLibrary) {
  for (const float x : NotableFloats()) {
    for (const float y : NotableFloats()) {
      const double truth = std::pow(static_cast<double>(x), static_cast<double>(y));
      ExpectResult(truth, Power(x, y), CallText("Power", x, y));
      ExpectResult(truth, PowerOfBase(x, y), CallText("PowerOfBase", x, y));
    }
  }
}

TEST(CurveMath, LogarithmsAndExponentialsOfNotableFloatsAreThoseOfTheCLibrary) {
  for (const float x : NotableFloats()) {
    ExpectResult(std::log(static_cast<double>(x)), Logarithm(x), CallText("Logarithm", x, 0));
    ExpectResult(std::exp(static_cast<double>(x)), Exponential(x), CallText("Exponential", x, 0));
  }
}

TEST(CurveMath, PowersLieWithinHalfAnUlpAllOverTheFloats) {
  for (const float y : {0.25F, 0.4166F, 1.25F, 2.4F, -1.0F, 0.1F, 40.0F, -7.0F}) {
    ForFloats(20011, [y](float x) {
      ExpectResult(std::pow(static_cast<double>(x), static_cast<double>(y)), Power(x, y),
                   CallText("Power", x, y));
    });
  }
}

TEST(CurveMath, PowersOfOneBaseLieWithinHalfAnUlpAllOverTheExponents) {
  for (const float base : {1.5F, 5.0F, 13.0F, 33.0F}) {
    ForFloats(20011, [base](float y) {
      ExpectResult(std::pow(static_cast<double>(base), static_cast<double>(y)),
                   PowerOfBase(base, y), CallText("PowerOfBase", base, y));
    });
  }
}

TEST(CurveMath, LogarithmsAndExponentialsLieWithinHalfAnUlpAllOverTheFloats) {
  ForFloats(4001, [](float x) {
    ExpectResult(std::log(static_cast<double>(x)), Logarithm(x), CallText("Logarithm", x, 0));
    ExpectResult(std::exp(static_cast<double>(x)), Exponential(x), CallText("Exponential", x, 0));
  });
}

TEST(CurveMath, AnExponentOfOneGivesTheFloatItself) {
  for (const float x : NotableFloats()) {
    if (std::isnan(x)) continue;
    EXPECT_EQ(std::bit_cast<std::uint32_t>(Power(x, 1.0F)), std::bit_cast<std::uint32_t>(x));
  }
}

TEST(CurveMath, DoublesLieWithinTwoToTheMinus37) {
  const double tolerance = 0x1p-37;
  for (double x = 1e-9; x < 1.2e4; x *= 1.00137) {
    for (const double y : {0.1593017578125, 78.84375, 2.4, 1 / 2.4, -0.3}) {
      const double truth = std::pow(x, y);
      if (truth < 1e-300 || truth > 1e300) continue;
      EXPECT_NEAR(Power64(x, y), truth, truth * tolerance) << x << " to " << y;
    }
    EXPECT_NEAR(Logarithm64(x), std::log(x), std::abs(std::log(x)) * tolerance) << x;
  }
  for (double x = -600.0; x < 700.0; x += 0.137) {
    EXPECT_NEAR(Exponential64(x), std::exp(x), std::exp(x) * tolerance) << x;
  }
}

TEST(CurveMath, DoublesOutsideTheFormulasGoAsTheCLibraryHasIt) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(Power64(0.0, 2.4), 0.0);
  EXPECT_EQ(Power64(0.0, -0.3), infinity);
  EXPECT_EQ(Power64(infinity, 2.4), infinity);
  EXPECT_EQ(Power64(infinity, -0.3), 0.0);
  EXPECT_EQ(Power64(7.0, 0.0), 1.0);
  EXPECT_TRUE(std::isnan(Power64(-1.0, 2.4)));
  EXPECT_TRUE(std::isnan(Power64(std::nan(""), 2.4)));
  EXPECT_EQ(Logarithm64(0.0), -infinity);
  EXPECT_EQ(Logarithm64(infinity), infinity);
  EXPECT_TRUE(std::isnan(Logarithm64(-1.0)));
  EXPECT_EQ(Exponential64(infinity), infinity);
  EXPECT_EQ(Exponential64(-infinity), 0.0);
  EXPECT_TRUE(std::isnan(Exponential64(std::nan(""))));
}

}  // namespace
