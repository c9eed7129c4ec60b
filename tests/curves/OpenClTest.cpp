// Every curve in OpenCL C against itself in C++, bit for bit.

#include <cmath>
#include <filesystem>
#include <ostream>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "tests/curves/CurveCalls.h"
#include "tests/curves/CurveInputs.h"
#include "tests/curves/OpenClProgram.h"

namespace {

using curves::CurveInputs;
using curves::Domain;
using curves::OpenClProgram;

constexpr std::size_t kInputs = 1'000'000;
constexpr std::size_t kBatch = 100'000;

template <class Number>
struct CurveCall {
  std::string name;
  std::size_t ins;
  std::size_t outs;
  void (*call)(const Number*, Number*);
};

template <class Number>
std::ostream& operator<<(std::ostream& out, const CurveCall<Number>& call) {
  return out << call.name;
}

/// The calls on this type of number.
template <class Number>
std::vector<CurveCall<Number>> CallsOn() {
  std::vector<CurveCall<Number>> calls;
#define QUILLON_CURVE_CALL(name, Type, ins, outs) \
  if constexpr (std::is_same_v<Number, Type>) calls.push_back({#name, ins, outs, Call##name});
#include "tests/curves/CurveCalls.inc"
  return calls;
}

/// Same bits, or neither a number.
template <class Number>
bool SameNumber(Number a, Number b) {
  return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b));
}

template <class Number>
std::string Text(const Number* numbers, std::size_t count) {
  std::ostringstream text;
  text << std::hexfloat;
  for (std::size_t i = 0; i < count; ++i) text << (i == 0 ? "" : ", ") << numbers[i];
  return text.str();
}

template <class Number>
void ExpectSameNumbers(const CurveCall<Number>& call, const Number* in, const Number* actual,
                       std::size_t& failures) {
  std::vector<Number> expected(call.outs);
  call.call(in, expected.data());
  for (std::size_t i = 0; i < call.outs; ++i) {
    if (SameNumber(actual[i], expected[i])) continue;
    if (++failures > 5) return;
    ADD_FAILURE() << call.name << '(' << Text(in, call.ins) << ") gives " << Text(actual, call.outs)
                  << " in OpenCL C and " << Text(expected.data(), call.outs) << " in C++";
    return;
  }
}

template <class Number>
void ExpectTheSameInOpenCl(const CurveCall<Number>& call, const Domain<Number>& domain) {
  for (const auto& setting : domain.settings) {
    ASSERT_EQ(domain.channels + setting.params.size(), call.ins);
  }
  CurveInputs<Number> inputs(domain);
  ASSERT_LE(inputs.Combinations(), kInputs / 2);

  const OpenClProgram program("#include \"tests/curves/Curves.cl\"\n");
  std::vector<Number> in(kBatch * call.ins);
  std::vector<Number> out(kBatch * call.outs);
  std::size_t failures = 0;
  for (std::size_t done = 0; done < kInputs; done += kBatch) {
    for (std::size_t item = 0; item < kBatch; ++item) inputs.Next(&in[item * call.ins]);
    program.Run("Run" + call.name, in.data(), in.size() * sizeof(Number), out.data(),
                out.size() * sizeof(Number), kBatch);
    for (std::size_t item = 0; item < kBatch; ++item) {
      ExpectSameNumbers(call, &in[item * call.ins], &out[item * call.outs], failures);
    }
  }
  EXPECT_EQ(failures, 0U) << "of " << kInputs << " inputs";
}

TEST(CurvesInOpenCl, CompileEachHeaderOnItsOwn) {
  std::size_t headers = 0;
  for (const auto& entry : std::filesystem::directory_iterator(QUILLON_SOURCE_DIR "/curves")) {
    if (entry.is_directory()) continue;  // for C++ alone
    const std::string header = "curves/" + entry.path().filename().string();
    EXPECT_NO_THROW(OpenClProgram("#include \"" + header + "\"\n")) << header;
    ++headers;
  }
  EXPECT_GE(headers, 16U);
}

class FloatCurveInOpenCl : public ::testing::TestWithParam<CurveCall<float>> {};
class DoubleCurveInOpenCl : public ::testing::TestWithParam<CurveCall<double>> {};

TEST_P(FloatCurveInOpenCl, GivesTheBitsOfCpp) {
  ExpectTheSameInOpenCl(GetParam(), curves::FloatDomains().at(GetParam().name));
}

TEST_P(DoubleCurveInOpenCl, GivesTheBitsOfCpp) {
  ExpectTheSameInOpenCl(GetParam(), curves::DoubleDomains().at(GetParam().name));
}

INSTANTIATE_TEST_SUITE_P(Curves, FloatCurveInOpenCl, ::testing::ValuesIn(CallsOn<float>()),
                         [](const auto& test) { return test.param.name; });
INSTANTIATE_TEST_SUITE_P(Curves, DoubleCurveInOpenCl, ::testing::ValuesIn(CallsOn<double>()),
                         [](const auto& test) { return test.param.name; });

}  // namespace
