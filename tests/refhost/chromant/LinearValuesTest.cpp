#include <bit>
#include <limits>

#include <gtest/gtest.h>

#include "host/chromant/Conversion.h"
#include "host/ironlane/ColorConvertParams.h"
#include "refhost/orvmediatypes/H273.h"
#include "tests/refhost/chromant/Samples.h"

using CHR::ConvertSignalToLinearValue;
using orvmediatypes::color::ColorDescription;
using orvmediatypes::color::ColorSpace;

namespace {

constexpr int kNotSupported = static_cast<int>(0xA00F000CU);
const std::vector<int> kTransfers = {1, 4, 5, 7, 8, 13, 16, 17, 18};

std::array<float, 3> LuminanceCoefficients(const ColorSpace& colorSpace) {
  std::shared_ptr<IL::ColorConvertParams> params;
  orvcore::utility::Guid identity;
  EXPECT_EQ(
      CHR::GetColorConverterParamsForColorSpace(colorSpace, true, White(203), params, identity), 0);
  return params->luminanceCoefficients;
}

}  // namespace

TEST(ConvertSignalToLinearValue, IsOneAtGraphicsWhite) {
  EXPECT_EQ(ConvertSignalToLinearValue(Space(1, 13), White(100), 1.0F), 1.0F);
  EXPECT_EQ(ConvertSignalToLinearValue(Space(1, 1), White(300), 1.0F), 1.0F);
  EXPECT_EQ(ConvertSignalToLinearValue(Space(9, 8), White(203), 7.5F), 7.5F);
  EXPECT_FLOAT_EQ(ConvertSignalToLinearValue(Space(9, 16), White(100), 0.508078421517399F), 1.0F);
  EXPECT_FLOAT_EQ(ConvertSignalToLinearValue(Space(9, 16), White(203), 1.0F), 10000.0F / 203.0F);
  EXPECT_FLOAT_EQ(ConvertSignalToLinearValue(Space(9, 18), White(250), 1.0F), 4.0F);
}

TEST(ConvertSignalToLinearValue, IsWhatConvertFrameMakesOfAGreyPixelBitForBit) {
  for (const int transfer : kTransfers) {
    const ColorSpace colorSpace = Space(9, transfer, 600);
    for (float signal = -0.25F; signal < 1.25F; signal += 0.01F) {
      const Rgb light = Converted({{signal, signal, signal}}, colorSpace, Space(9, 8, 600))[0];
      const float value = ConvertSignalToLinearValue(colorSpace, White(203), signal);
      EXPECT_EQ(std::bit_cast<std::uint32_t>(value), std::bit_cast<std::uint32_t>(light[0]));
      EXPECT_EQ(std::bit_cast<std::uint32_t>(value), std::bit_cast<std::uint32_t>(light[2]));
    }
  }
}

TEST(ConvertSignalToLinearValue, LeavesTheSignalOfAnUnknownSpaceAlone) {
  EXPECT_EQ(ConvertSignalToLinearValue(ColorSpace(), White(203), 0.3F), 0.3F);
  EXPECT_EQ(ConvertSignalToLinearValue(Space(9, 3), White(203), 0.3F), 0.3F);
  EXPECT_EQ(ConvertSignalToLinearValue(Space(3, 16), White(203), 0.3F), 0.3F);
}

TEST(ConvertFrame, KeepsGreyGreyToTheLastBit) {
  for (const int from : {1, 6, 9, 11, 12}) {
    for (const int to : {1, 8, 9, 12}) {
      for (const int transfer : kTransfers) {
        for (const float level : {0.0F, 1e-6F, 0.1F, 0.37F, 0.58F, 1.0F, 1.01F}) {
          const Rgb grey =
              Converted({{level, level, level}}, Space(from, 8), Space(to, transfer))[0];
          EXPECT_EQ(grey[0], grey[1]) << from << ' ' << to << ' ' << transfer << ' ' << level;
          EXPECT_EQ(grey[1], grey[2]) << from << ' ' << to << ' ' << transfer << ' ' << level;
        }
      }
    }
  }
}

TEST(ORVColorSpaceToEquivalentLinearColorSpace, ChangesTheTransferAndNothingElse) {
  ColorDescription description;
  description.primaries = 2;
  description.transfer = 18;
  description.matrix = 9;
  description.fullRange = false;
  description.chromaLocation = 2;
  description.chromaticities = *RefHost::ChromaticitiesOf(Space(12, 0));
  description.peakLuminance = 600;
  description.masteringMaxLuminance = 4000.0F;
  const ColorSpace linear = CHR::ORVColorSpaceToEquivalentLinearColorSpace(ColorSpace(description));
  EXPECT_TRUE(linear.IsLinear());
  description.transfer = 8;
  EXPECT_EQ(linear.Description(), description);
}

TEST(ORVColorSpaceToEquivalentLinearColorSpace, LeavesAnEmptySpaceEmpty) {
  EXPECT_TRUE(CHR::ORVColorSpaceToEquivalentLinearColorSpace(ColorSpace()).empty());
}

TEST(GetColorConverterParamsForColorSpace, GivesTheLuminanceOfThePrimaries) {
  EXPECT_EQ(LuminanceCoefficients(Space(1, 13)),
            (std::array{0.212639005872F, 0.715168678768F, 0.0721923153607F}));
  EXPECT_EQ(LuminanceCoefficients(Space(9, 16)),
            (std::array{0.262700212011F, 0.677998071519F, 0.0593017164699F}));
  EXPECT_EQ(LuminanceCoefficients(Space(10, 17)), (std::array{0.0F, 1.0F, 0.0F}));
}

TEST(GetColorConverterParamsForColorSpace, GivesEqualIdentitiesToEqualParametersOnly) {
  std::shared_ptr<IL::ColorConvertParams> params;
  orvcore::utility::Guid bt709;
  orvcore::utility::Guid srgb;
  orvcore::utility::Guid bt2020;
  CHR::GetColorConverterParamsForColorSpace(Space(1, 1), true, White(203), params, bt709);
  CHR::GetColorConverterParamsForColorSpace(Space(1, 13), true, White(203), params, srgb);
  CHR::GetColorConverterParamsForColorSpace(Space(9, 14), true, White(203), params, bt2020);
  EXPECT_EQ(bt709, srgb);
  EXPECT_FALSE(bt709 == bt2020);
}

TEST(GetColorConverterParamsForColorSpace, RefusesUnknownPrimaries) {
  std::shared_ptr<IL::ColorConvertParams> params;
  orvcore::utility::Guid identity;
  for (const ColorSpace& unknown : {ColorSpace(), Space(2, 16), Space(3, 16)}) {
    EXPECT_EQ(
        CHR::GetColorConverterParamsForColorSpace(unknown, true, White(203), params, identity),
        kNotSupported);
    EXPECT_EQ(params, nullptr);
  }
}
