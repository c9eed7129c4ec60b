#include <cmath>

#include <ImfChannelList.h>
#include <ImfHeader.h>
#include <ImfInputFile.h>
#include <ImfStandardAttributes.h>
#include <gtest/gtest.h>

#include "tests/tools/io/StillTestSupport.h"
#include "tools/quillon/io/WriteStill.h"

using namespace Quillon::Cli;
using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::GraphicsWhiteLuminance;

namespace {

/// Values far outside 0 to 1 too.
Rgb WideColor(int x, int y) {
  return {std::ldexp(1.0F, x - 8), -0.25F * static_cast<float>(y), static_cast<float>(x * y)};
}

StillOutput WideOutput() {
  StillOutput output;
  output.frame = MakePicture(20, 40, Tagged(9, 8), WideColor);
  return output;
}

}  // namespace

TEST(WriteExr, KeepsLinearFloatsBitForBit) {
  const ScratchFolder folder;
  StillOutput output = WideOutput();
  output.depth = 32;
  WriteStill(output, folder / "a.exr");
  const Still still = ReadStill(folder / "a.exr");
  EXPECT_EQ(LargestDifference(still.frame, output.frame), 0.0F);
  EXPECT_EQ(still.frame->GetColorSpace().Description().primaries, 9);
  EXPECT_EQ(still.frame->GetColorSpace().Description().transfer, 8);
}

TEST(WriteExr, RoundsToHalfByDefault) {
  const ScratchFolder folder;
  StillOutput output;
  output.frame = MakePicture(1, 1, Tagged(1, 8), [](int, int) {
    return Rgb{1.0F + 1.0F / 2048.0F + 1e-6F, 0.1F, 65504.0F};
  });
  WriteStill(output, folder / "a.exr");
  EXPECT_EQ(PixelAt(ReadStill(folder / "a.exr").frame, 0, 0),
            (Rgb{1.0F + 1.0F / 1024.0F, 0.0999755859375F, 65504.0F}));
  const Imf::InputFile file((folder / "a.exr").c_str());
  EXPECT_EQ(file.header().channels().findChannel("R")->type, Imf::HALF);
}

TEST(WriteExr, WritesTheLinearEquivalentOfPQ) {
  const ScratchFolder folder;
  StillOutput output;
  // PQ code value of 203 nits, ITU-R BT.2408.
  output.frame = MakePicture(1, 1, Tagged(9, 16), [](int, int) {
    return Rgb{0.580689F, 0.580689F, 0.580689F};
  });
  output.settings = ColorManagementSettings(GraphicsWhiteLuminance::Nits100);
  output.depth = 32;
  WriteStill(output, folder / "a.exr");
  const Still still = ReadStill(folder / "a.exr");
  EXPECT_NEAR(PixelAt(still.frame, 0, 0)[0], 2.03F, 1e-4F);
  EXPECT_EQ(still.frame->GetColorSpace().Description().transfer, 8);
}

TEST(WriteExr, SaysItsPrimariesWhiteAndCompression) {
  const ScratchFolder folder;
  StillOutput output = WideOutput();
  output.settings = ColorManagementSettings(GraphicsWhiteLuminance::Nits300);
  WriteStill(output, folder / "a.exr");
  const Imf::InputFile file((folder / "a.exr").c_str());
  const Imf::Header& header = file.header();
  EXPECT_EQ(header.compression(), Imf::ZIP_COMPRESSION);
  ASSERT_TRUE(Imf::hasChromaticities(header));
  EXPECT_FLOAT_EQ(Imf::chromaticities(header).red.x, 0.708F);
  EXPECT_FLOAT_EQ(Imf::chromaticities(header).green.y, 0.797F);
  EXPECT_FLOAT_EQ(Imf::chromaticities(header).blue.x, 0.131F);
  EXPECT_FLOAT_EQ(Imf::chromaticities(header).white.y, 0.329F);
  ASSERT_TRUE(Imf::hasWhiteLuminance(header));
  EXPECT_EQ(Imf::whiteLuminance(header), 300.0F);
  EXPECT_EQ(header.channels().findChannel("A"), nullptr);
}

TEST(WriteExr, KeepsPrimariesGivenByCoordinates) {
  const ScratchFolder folder;
  StillOutput output = WideOutput();
  orvmediatypes::color::ColorDescription description;
  description.primaries = 2;
  description.transfer = 8;
  description.chromaticities = {{0.7347, 0.2653}, {0.0, 1.0}, {0.0001, -0.077}, {0.32168, 0.33767}};
  output.frame->SetColorSpace(orvmediatypes::color::ColorSpace(description));
  WriteStill(output, folder / "a.exr");
  const auto read = ReadStill(folder / "a.exr").frame->GetColorSpace().Description();
  EXPECT_EQ(read.primaries, 2);
  EXPECT_NEAR(read.chromaticities.blue.y, -0.077, 1e-7);
}

TEST(WriteExr, RefusesColoursThatAreNotKnownAndUnknownDepths) {
  const ScratchFolder folder;
  StillOutput output = WideOutput();
  output.depth = 8;
  EXPECT_EQ(FailureOf([&] { WriteStill(output, folder / "a.exr"); })->kind,
            StillErrorKind::NotSupported);
  output.depth.reset();
  output.frame->SetColorSpace({});
  EXPECT_EQ(FailureOf([&] { WriteStill(output, folder / "a.exr"); })->kind,
            StillErrorKind::NotSupported);
}
