#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "refhost/chromant/PixelConverter.h"
#include "refhost/chromant/rows/ConvertRows.h"

namespace {

using RefHost::InstructionSet;

struct Planes {
  std::vector<float> red;
  std::vector<float> green;
  std::vector<float> blue;

  void Add(float r, float g, float b) {
    red.push_back(r);
    green.push_back(g);
    blue.push_back(b);
  }
};

/// Every special number beside each other, and random ones from below 0 to far above 1, grey among
/// them.
Planes MakePlanes() {
  using Limits = std::numeric_limits<float>;
  Planes planes;
  const std::array<float, 16> special = {0.0F,
                                         -0.0F,
                                         1.0F,
                                         -1.0F,
                                         0.5F,
                                         0.04045F,
                                         1.99F,
                                         2.1F,
                                         1e-6F,
                                         1e30F,
                                         Limits::infinity(),
                                         -Limits::infinity(),
                                         Limits::quiet_NaN(),
                                         Limits::denorm_min(),
                                         Limits::max(),
                                         Limits::min()};
  for (const float red : special) {
    for (const float green : special) {
      for (const float blue : special) planes.Add(red, green, blue);
    }
  }
  std::mt19937 random(7);
  std::uniform_real_distribution<float> signal(0.0F, 1.05F);
  std::uniform_real_distribution<float> exponent(-40.0F, 10.0F);
  std::uniform_real_distribution<float> sign(-0.2F, 1.0F);
  for (int i = 0; i < 20000; ++i) {
    const float grey = signal(random);
    planes.Add(signal(random), signal(random), signal(random));
    planes.Add(grey, grey, grey);
    planes.Add(std::copysign(std::exp2(exponent(random)), sign(random)),
               std::copysign(std::exp2(exponent(random)), sign(random)),
               std::copysign(std::exp2(exponent(random)), sign(random)));
  }
  return planes;
}

std::uint32_t Bits(float value) { return std::bit_cast<std::uint32_t>(value); }

/// Which NaN comes of two is not IEEE 754's to say, nor the same in every build.
bool AreSame(float one, float other) {
  return Bits(one) == Bits(other) || (std::isnan(one) && std::isnan(other));
}

void ExpectBitsOfPixels(const ConversionParams& params, const Planes& source,
                        const Planes& converted) {
  int differences = 0;
  for (std::size_t i = 0; i < source.red.size(); ++i) {
    std::array<float, 3> pixel = {source.blue[i], source.green[i], source.red[i]};
    ConvertPixel(params, pixel.data());
    const bool isSame = AreSame(pixel[0], converted.blue[i]) &&
                        AreSame(pixel[1], converted.green[i]) &&
                        AreSame(pixel[2], converted.red[i]);
    if (isSame || ++differences > 3) continue;
    ADD_FAILURE() << source.red[i] << ' ' << source.green[i] << ' ' << source.blue[i] << " to "
                  << converted.red[i] << ' ' << converted.green[i] << ' ' << converted.blue[i]
                  << " and not " << pixel[2] << ' ' << pixel[1] << ' ' << pixel[0];
  }
  EXPECT_EQ(differences, 0);
}

orvmediatypes::color::ColorSpace SpaceOf(int primaries, int transfer) {
  orvmediatypes::color::ColorDescription description;
  description.primaries = static_cast<std::uint8_t>(primaries);
  description.transfer = static_cast<std::uint8_t>(transfer);
  return orvmediatypes::color::ColorSpace(description);
}

ConversionParams ParamsOf(int sourcePrimaries, int sourceTransfer, int destinationPrimaries,
                          int destinationTransfer) {
  return RefHost::MakePixelConverter(SpaceOf(sourcePrimaries, sourceTransfer),
                                     SpaceOf(destinationPrimaries, destinationTransfer), {})
      ->Params();
}

class ConvertRowsBy : public ::testing::TestWithParam<InstructionSet> {
 protected:
  void SetUp() override {
    if (!RefHost::CanRun(GetParam())) GTEST_SKIP() << "this machine cannot run them";
  }

  void ExpectSameBits(const ConversionParams& params) const {
    Planes planes = source_;
    ASSERT_TRUE(RefHost::ConvertRows(GetParam(), params, planes.red.data(), planes.green.data(),
                                     planes.blue.data(), planes.red.size()));
    ExpectBitsOfPixels(params, source_, planes);
  }

  const Planes source_ = MakePlanes();
};

constexpr int kBT709 = 1;
constexpr int kBT2020 = 9;
constexpr int kDciP3 = 11;  // whose white is another one

TEST_P(ConvertRowsBy, HasTheBitsOfPixelsForEveryPairOfTransfers) {
  for (const int from : {1, 4, 5, 8, 13, 16}) {
    for (const int to : {1, 4, 5, 8, 13, 16}) {
      SCOPED_TRACE(testing::Message() << from << " to " << to);
      ExpectSameBits(ParamsOf(kBT2020, from, kBT2020, to));
    }
  }
}

TEST_P(ConvertRowsBy, HasTheBitsOfPixelsBetweenPrimaries) {
  for (const int to : {kBT709, kDciP3}) {
    for (const int transfer : {1, 8, 13, 16}) {
      SCOPED_TRACE(testing::Message() << to << ", " << transfer);
      ExpectSameBits(ParamsOf(kBT2020, 8, to, transfer));
      ExpectSameBits(ParamsOf(kBT2020, transfer, to, 8));
    }
  }
}

TEST_P(ConvertRowsBy, ConvertsAnyNumberOfPixelsAndNoneBeyond) {
  const ConversionParams params = ParamsOf(kBT2020, 16, kBT709, 13);
  for (std::size_t count = 0; count < 200; ++count) {
    Planes planes = source_;
    ASSERT_TRUE(RefHost::ConvertRows(GetParam(), params, planes.red.data(), planes.green.data(),
                                     planes.blue.data(), count));
    for (std::size_t i = 0; i < 300; ++i) {
      std::array<float, 3> pixel = {source_.blue[i], source_.green[i], source_.red[i]};
      if (i < count) ConvertPixel(params, pixel.data());
      ASSERT_TRUE(AreSame(planes.red[i], pixel[2])) << i << " of " << count;
      ASSERT_TRUE(AreSame(planes.blue[i], pixel[0])) << i << " of " << count;
    }
  }
}

TEST_P(ConvertRowsBy, LeavesTransfersWithoutAFormForRowsAlone) {
  for (const int transfer : {7, 17, 18}) {
    Planes planes = source_;
    EXPECT_FALSE(RefHost::ConvertRows(GetParam(), ParamsOf(kBT2020, transfer, kBT2020, 8),
                                      planes.red.data(), planes.green.data(), planes.blue.data(),
                                      9));
    EXPECT_FALSE(RefHost::ConvertRows(GetParam(), ParamsOf(kBT2020, 8, kBT2020, transfer),
                                      planes.red.data(), planes.green.data(), planes.blue.data(),
                                      9));
    EXPECT_EQ(Bits(planes.red[2]), Bits(source_.red[2]));
  }
}

/// Every float from 2^-16 to a little above 1, `stride` floats apart.
std::vector<float> EverySignal(std::uint32_t stride) {
  std::vector<float> signals;
  for (std::uint32_t bits = Bits(0x1p-16F); bits < Bits(1.03F); bits += stride) {
    signals.push_back(std::bit_cast<float>(bits));
  }
  return signals;
}

/// How many of the signals become other bits than the baseline's, which are those of pixels.
std::size_t CountDifferences(InstructionSet set, const ConversionParams& params,
                             const std::vector<float>& signals) {
  constexpr std::size_t kChunk = 1 << 12;
  std::size_t differences = 0;
  for (std::size_t done = 0; done < signals.size(); done += kChunk) {
    const std::size_t third = std::min(kChunk, signals.size() - done) / 3;
    const auto convert = [&](InstructionSet by) {
      const auto first = signals.begin() + static_cast<std::ptrdiff_t>(done);
      std::vector<float> chunk(first, first + static_cast<std::ptrdiff_t>(3 * third));
      RefHost::ConvertRows(by, params, chunk.data(), chunk.data() + third, chunk.data() + 2 * third,
                           third);
      return chunk;
    };
    const std::vector<float> found = convert(set);
    const std::vector<float> expected = convert(InstructionSet::Baseline);
    for (std::size_t i = 0; i < found.size(); ++i) {
      differences += Bits(found[i]) == Bits(expected[i]) ? 0 : 1;
    }
  }
  return differences;
}

// 17 is no divisor of a power of two: every part of each table is met, at ever other places.
constexpr std::uint32_t kStride = 17;

TEST_P(ConvertRowsBy, DecodesPQAllAlongTheSignalWithTheBitsOfPixels) {
  const std::vector<float> signals = EverySignal(kStride);
  ASSERT_GT(signals.size(), 7'000'000U);
  for (const int white : {80, 100, 203, 300}) {
    const auto params = RefHost::MakePixelConverter(
                            SpaceOf(kBT2020, 16), SpaceOf(kBT2020, 8),
                            orvmediatypes::color::ColorManagementSettings(
                                static_cast<orvmediatypes::color::GraphicsWhiteLuminance>(white)))
                            ->Params();
    EXPECT_EQ(CountDifferences(GetParam(), params, signals), 0U) << white;
  }
}

TEST_P(ConvertRowsBy, DecodesPQToOtherPrimariesWithTheBitsOfPixels) {
  std::vector<float> signals = EverySignal(kStride);
  // Neighbours, and colours of all kinds.
  EXPECT_EQ(CountDifferences(GetParam(), ParamsOf(kBT2020, 16, kBT709, 8), signals), 0U);
  std::shuffle(signals.begin(), signals.end(), std::mt19937(3));
  EXPECT_EQ(CountDifferences(GetParam(), ParamsOf(kBT2020, 16, kBT709, 8), signals), 0U);
}

TEST_P(ConvertRowsBy, EncodesBt1886AllAlongTheLightWithTheBitsOfPixels) {
  const std::vector<float> signals = EverySignal(kStride);
  for (const int primaries : {kBT2020, kBT709}) {
    EXPECT_EQ(CountDifferences(GetParam(), ParamsOf(kBT2020, 8, primaries, 1), signals), 0U);
  }
}

INSTANTIATE_TEST_SUITE_P(Sets, ConvertRowsBy,
                         ::testing::Values(InstructionSet::Baseline, InstructionSet::Avx2,
                                           InstructionSet::Avx512));

}  // namespace
