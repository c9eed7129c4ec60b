#include <cmath>
#include <limits>
#include <set>

#include <gtest/gtest.h>

#include "curves/SdrTransfer.h"
#include "host/chromant/TransferFunctions.h"
#include "tests/refhost/chromant/Samples.h"

using CHR::GetLinearToSignalTransferFn;
using CHR::GetSignalToLinearTransferFn;

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
const std::vector<int> kTransfers = {1, 4, 5, 6, 7, 8, 11, 13, 14, 15, 16, 17, 18};

Rgb Applied(const CHR::TransferFunction& function, Rgb pixel, float scale = 1.0F) {
  function(pixel.data(), scale);
  return pixel;
}

float Decoded(int transfer, float signal, float scale = 1.0F) {
  return Applied(GetSignalToLinearTransferFn(transfer, 0), {signal, signal, signal}, scale)[0];
}

float Encoded(int transfer, float linear, float scale = 1.0F) {
  return Applied(GetLinearToSignalTransferFn(transfer, 0), {linear, linear, linear}, scale)[0];
}

}  // namespace

TEST(TransferFunctions, ExistForTheTransfersThatAreKnownAndNoOthers) {
  const std::set<int> known(kTransfers.begin(), kTransfers.end());
  for (int transfer = -300; transfer <= 600; ++transfer) {
    EXPECT_EQ(GetSignalToLinearTransferFn(transfer, 0) != nullptr, known.contains(transfer));
    EXPECT_EQ(GetLinearToSignalTransferFn(transfer, 0) != nullptr, known.contains(transfer));
  }
}

TEST(TransferFunctions, ExistForVideoColorimetryZeroAlone) {
  EXPECT_EQ(GetSignalToLinearTransferFn(16, 1), nullptr);
  EXPECT_EQ(GetLinearToSignalTransferFn(16, -1), nullptr);
}

TEST(TransferFunctions, AreInNitsForPQAndHlg) {
  EXPECT_EQ(Decoded(16, 1.0F), 10000.0F);
  EXPECT_NEAR(Decoded(18, 1.0F), 1000.0F, 0.001F);
  EXPECT_EQ(Encoded(16, 10000.0F), 1.0F);
  EXPECT_NEAR(Encoded(18, 1000.0F), 1.0F, 1e-6F);
}

TEST(TransferFunctions, MultiplyLinearByTheScaleAndDivideItAgain) {
  EXPECT_FLOAT_EQ(Decoded(16, 1.0F, 0.01F), 100.0F);
  EXPECT_FLOAT_EQ(Encoded(16, 100.0F, 0.01F), 1.0F);
  EXPECT_FLOAT_EQ(Decoded(8, 0.5F, 203.0F), 101.5F);
  EXPECT_FLOAT_EQ(Encoded(8, 101.5F, 203.0F), 0.5F);
}

TEST(TransferFunctions, UndoEachOther) {
  for (const int transfer : kTransfers) {
    const bool onlyPositive = transfer == 16;
    for (float signal = onlyPositive ? 0.0F : -1.5F; signal <= 1.5F; signal += 0.0625F) {
      EXPECT_NEAR(Encoded(transfer, Decoded(transfer, signal)), signal, 2e-7F) << transfer;
    }
  }
}

TEST(TransferFunctions, AreOddAboutZeroButForPQ) {
  for (const int transfer : kTransfers) {
    if (transfer == 16) continue;
    for (const float value : {0.01F, 0.3F, 0.9F, 1.2F}) {
      EXPECT_EQ(Decoded(transfer, -value), -Decoded(transfer, value)) << transfer;
      EXPECT_EQ(Encoded(transfer, -value), -Encoded(transfer, value)) << transfer;
    }
  }
}

TEST(TransferFunctions, RiseEverywhere) {
  for (const int transfer : kTransfers) {
    float last = Decoded(transfer, 0.0F);
    for (int code = 1; code <= 1200; ++code) {
      const float light = Decoded(transfer, static_cast<float>(code) / 1000.0F);
      EXPECT_GT(light, last) << transfer << ' ' << code;
      last = light;
    }
  }
}

TEST(TransferFunctions, KeepNaN) {
  for (const int transfer : kTransfers) {
    EXPECT_TRUE(std::isnan(Decoded(transfer, kNaN))) << transfer;
    EXPECT_TRUE(std::isnan(Encoded(transfer, kNaN))) << transfer;
  }
}

TEST(TransferFunctions, KeepInfiniteLightInfiniteBelowPQ) {
  for (const int transfer : {1, 4, 5, 7, 8, 13, 17}) {
    EXPECT_EQ(Decoded(transfer, kInfinity), kInfinity) << transfer;
    EXPECT_EQ(Decoded(transfer, -kInfinity), -kInfinity) << transfer;
    EXPECT_EQ(Encoded(transfer, kInfinity), kInfinity) << transfer;
  }
}

TEST(TransferFunctions, TakeDenormals) {
  const float denormal = std::numeric_limits<float>::denorm_min();
  for (const int transfer : kTransfers) {
    EXPECT_GE(Decoded(transfer, denormal), 0.0F) << transfer;
    EXPECT_LT(Decoded(transfer, denormal), 1e-9F) << transfer;
    EXPECT_GE(Encoded(transfer, denormal), 0.0F) << transfer;
    EXPECT_LT(Encoded(transfer, denormal), 1e-6F) << transfer;
  }
}

TEST(PQ, IsZeroAtAndBelowZeroBothWays) {
  for (const float value : {0.0F, -0.0F, -1e-30F, -1.0F, -kInfinity}) {
    EXPECT_EQ(Decoded(16, value), 0.0F);
    EXPECT_EQ(Encoded(16, value), 0.0F);
  }
}

TEST(PQ, GoesOnAboveOneUpToItsPoleAndIsInfiniteFromThere) {
  EXPECT_GT(Decoded(16, 1.09F), 20000.0F);
  EXPECT_TRUE(std::isfinite(Decoded(16, 1.9F)));
  EXPECT_EQ(Decoded(16, 2.0F), kInfinity);
  EXPECT_EQ(Decoded(16, 3e38F), kInfinity);
  EXPECT_EQ(Decoded(16, kInfinity), kInfinity);
}

TEST(PQ, EncodesAllLightBelowItsPole) {
  const float pole = Encoded(16, kInfinity);
  EXPECT_NEAR(pole, 1.992F, 0.001F);
  EXPECT_LE(Encoded(16, 3e38F), pole);
  EXPECT_GT(Encoded(16, 3e38F), 1.9F);
}

TEST(Hlg, AppliesItsOotfOnLuminanceOfBlueGreenRedPixels) {
  // Pure red and pure blue of one signal: scene light E, luminance w E, display 1000 (w E)^0.2 E.
  const auto decode = GetSignalToLinearTransferFn(18, 0);
  const double scene = 0.5 * 0.5 / 3.0;
  EXPECT_NEAR(Applied(decode, {0.0F, 0.0F, 0.5F})[2],
              1000.0 * std::pow(0.2627 * scene, 0.2) * scene, 1e-3);
  EXPECT_NEAR(Applied(decode, {0.5F, 0.0F, 0.0F})[0],
              1000.0 * std::pow(0.0593 * scene, 0.2) * scene, 1e-3);
}

TEST(Hlg, KeepsBlackBlackWhateverTheSystemGamma) {
  // Below 334 nits the system gamma is below 1 and black would be 0 to a negative power.
  for (const int peak : {1, 2, 100, 334, 1000, 10000}) {
    EXPECT_EQ(Converted({{0.0F, 0.0F, 0.0F}}, Space(9, 18, peak), Space(9, 8))[0],
              (Rgb{0.0F, 0.0F, 0.0F}));
    EXPECT_EQ(Converted({{0.0F, 0.0F, 0.0F}}, Space(9, 8), Space(9, 18, peak))[0],
              (Rgb{0.0F, 0.0F, 0.0F}));
  }
}

TEST(Hlg, KeepsTheChromaticityOfTheScene) {
  const auto sceneOf = [](float signal) {
    return signal <= 0.5F ? signal * signal / 3.0
                          : (std::exp((signal - 0.55991073) / 0.17883277) + 0.28466892) / 12.0;
  };
  const Rgb red = {0.75F, 0.3F, 0.2F};
  for (const int peak : {400, 1000, 2000}) {
    const Rgb light = Converted({red}, Space(9, 18, peak), Space(9, 8))[0];
    EXPECT_NEAR(light[1] / light[0], sceneOf(red[1]) / sceneOf(red[0]), 1e-6) << peak;
    EXPECT_NEAR(light[2] / light[0], sceneOf(red[2]) / sceneOf(red[0]), 1e-6) << peak;
  }
}

TEST(Hlg, UndoesItsOotfForOutOfGamutLightToo) {
  // The second has negative luminance.
  const std::vector<Rgb> signals = {{0.9F, -0.2F, 0.1F}, {-0.6F, 0.1F, 0.9F}, {1.2F, 1.1F, 0.0F}};
  for (const int peak : {400, 1000, 4000}) {
    const auto light = Converted(signals, Space(9, 18, peak), Space(9, 8));
    ExpectNear(Converted(light, Space(9, 8), Space(9, 18, peak)), signals, 1e-6);
  }
}

TEST(Hlg, IsShownAsBrightAsItsDisplay) {
  for (const int peak : {203, 400, 1000, 2000}) {
    EXPECT_NEAR(Converted({{1.0F, 1.0F, 1.0F}}, Space(9, 18, peak), Space(9, 8), 1)[0][0], peak,
                peak * 1e-6);
  }
}

TEST(SdrTransfer, MeetsWhereItsPiecesMeet) {
  EXPECT_NEAR(DecodeSrgb(0.04045), DecodeSrgb(std::nextafter(0.04045, 1.0)), 3e-8);
  const double joint = 0.0228215855294448;
  EXPECT_NEAR(EncodeSmpte240M(joint), EncodeSmpte240M(std::nextafter(joint, 0.0)), 1e-12);
}

TEST(SdrTransfer, PutsTheWhiteOfST428At48Of52Nits) {
  EXPECT_FLOAT_EQ(Decoded(17, 1.0F), 52.37F / 48.0F);
  EXPECT_FLOAT_EQ(Encoded(17, 1.0F), std::pow(48.0F / 52.37F, 1.0F / 2.6F));
}
