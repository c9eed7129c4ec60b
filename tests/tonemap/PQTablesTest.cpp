#include <cmath>

#include "tests/tonemap/CurveTest.h"
#include "tonemap/PQTables.h"

namespace {

using tonemap::kInfinity;
using tonemap::kNaN;

using Three = std::array<float, 3>;

Three Encode(Three nits) {
  Quillon::EncodePQByTable(nits.data());
  return nits;
}

Three Decode(Three signal) {
  Quillon::DecodePQByTable(signal.data());
  return signal;
}

void ExpectThree(const Three& actual, const Three& expected) {
  for (std::size_t channel = 0; channel < actual.size(); ++channel) {
    EXPECT_FLOAT_EQ(actual[channel], expected[channel]) << "channel " << channel;
  }
}

// Single precision's 1/8191: 2^-13 (1 + 2^-13).
constexpr float kStep = 0x1.0008p-13F;

// SMPTE ST 2084, of nits and of code values.
constexpr float kPQ1 = 0.149945736F;
constexpr float kPQ1p5 = 0.171613321F;
constexpr float kPQ2 = 0.188206986F;
constexpr float kPQ100 = 0.508078396F;
constexpr float kPQ100p5 = 0.508579075F;
constexpr float kPQ9999 = 0.99998951F;
constexpr float kNitsOfEntry1 = 1.04127503e-06F;
constexpr float kNitsOfEntry8190 = 9988.34473F;
constexpr float kNitsOfHalf = 92.2457123F;
constexpr float kNitsOfEntry4095 = 92.1893158F;

TEST(PQTables, EncodeLightBelow1NitAsBlack) {
  ExpectThree(Encode({0.0F, 0.5F, std::nextafter(1.0F, 0.0F)}), {0.0F, 0.0F, 0.0F});
}

TEST(PQTables, EncodeByTheNextLowerWholeNit) {
  ExpectThree(Encode({1.0F, std::nextafter(2.0F, 0.0F), 100.5F}), {kPQ1, kPQ1, kPQ100});
  ExpectThree(Encode({2.0F, 2.5F, 1.5F}), {kPQ2, kPQ2, kPQ1});
}

TEST(PQTables, Encode10000NitsByTheLastEntry) {
  ExpectThree(Encode({10000.0F, 9999.5F, 1.5F}), {kPQ9999, kPQ9999, kPQ1});
}

TEST(PQTables, EncodeJustAbove10000NitsExactlyInAllChannels) {
  ExpectThree(Encode({std::nextafter(10000.0F, kInfinity), 100.5F, 1.5F}),
              {1.0F, kPQ100p5, kPQ1p5});
}

TEST(PQTables, EncodeTheSmallestNegativeLightExactlyInAllChannels) {
  ExpectThree(Encode({-std::numeric_limits<float>::denorm_min(), 100.5F, 1.5F}),
              {0.0F, kPQ100p5, kPQ1p5});
}

TEST(PQTables, EncodeNegativeZeroByTheTable) {
  ExpectThree(Encode({-0.0F, 100.5F, 1.5F}), {0.0F, kPQ100, kPQ1});
}

TEST(PQTables, EncodeNaNAsBlackAndTheRestByTheTable) {
  ExpectThree(Encode({kNaN, 100.5F, 1.5F}), {0.0F, kPQ100, kPQ1});
  ExpectThree(Encode({100.5F, kNaN, 1.5F}), {kPQ100, 0.0F, kPQ1});
}

TEST(PQTables, SeeLightBeyondTheTableBehindANaNButNotBehindAFirst) {
  // The search for the largest channel never leaves a first channel that is NaN.
  ExpectThree(Encode({kNaN, 20000.0F, 1.5F}), {0.0F, kPQ9999, kPQ1});
  ExpectThree(Encode({100.5F, 20000.0F, 1.5F}), {kPQ100p5, 1.07146144F, kPQ1p5});
}

TEST(PQTables, EncodeNextToInfinityExactly) {
  const Three signal = Encode({100.5F, kInfinity, 1.5F});
  EXPECT_FLOAT_EQ(signal[0], kPQ100p5);
  EXPECT_FLOAT_EQ(signal[2], kPQ1p5);
}

TEST(PQTables, DecodeByTheNextLowerEntry) {
  ExpectThree(Decode({0.5F, kStep, std::nextafter(2.0F * kStep, 0.0F)}),
              {kNitsOfEntry4095, kNitsOfEntry1, kNitsOfEntry1});
}

TEST(PQTables, DecodeSignalsBelowOneStepAsBlack) {
  ExpectThree(Decode({0.0F, -0.0F, std::nextafter(kStep, 0.0F)}), {0.0F, 0.0F, 0.0F});
}

TEST(PQTables, DecodeASignalOf1ByTheLastEntry) {
  // Place 8191, which the table of 8191 entries does not have.
  ExpectThree(Decode({1.0F, 0.5F, 0.0F}), {kNitsOfEntry8190, kNitsOfEntry4095, 0.0F});
}

TEST(PQTables, DecodeJustAbove1ExactlyInAllChannels) {
  ExpectThree(Decode({std::nextafter(1.0F, 2.0F), 0.5F, 0.25F}),
              {10000.0117F, kNitsOfHalf, 5.15417624F});
}

TEST(PQTables, DecodeTheSmallestNegativeSignalExactlyInAllChannels) {
  ExpectThree(Decode({0.25F, -std::numeric_limits<float>::denorm_min(), 0.5F}),
              {5.15417624F, 0.0F, kNitsOfHalf});
}

TEST(PQTables, DecodeNaNAsBlackAndTheRestByTheTable) {
  ExpectThree(Decode({0.5F, kNaN, 0.5F}), {kNitsOfEntry4095, 0.0F, kNitsOfEntry4095});
}

TEST(PQTables, FindTheEntryOfASignalByDivisionThroughTheStep) {
  // 0x1.0028p-2 lies half a step of single precision below 2049 steps: the quotient rounds up to
  // 2049, the product with 8191 stays at 2048.99976.
  ExpectThree(Decode({0x1.0028p-2F, 2048.5F * kStep, 0.0F}), {5.16525459F, 5.15639019F, 0.0F});
}

TEST(PQTables, FindEveryEntryAtItsOwnSignal) {
  Three last = Decode({0.0F, 0.0F, 0.0F});
  EXPECT_EQ(last[0], 0.0F);
  for (int entry = 1; entry <= 8190; ++entry) {
    const float signal = static_cast<float>(entry) * kStep;
    const Three nits = Decode({signal, std::nextafter(signal + 0.5F * kStep, 0.0F), 0.0F});
    ASSERT_EQ(nits[0], nits[1]) << "entry " << entry;
    ASSERT_GT(nits[0], last[0]) << "entry " << entry;
    last = nits;
  }
}

}  // namespace
