// Where the library is built without zimg.

#include <gtest/gtest.h>

#include "refhost/ResultCodes.h"
#include "tests/refhost/kestrel/Frames.h"

std::vector<std::vector<NamedFormat>> ConvertedFormats() { return {InterleavedFormats()}; }

namespace {

TEST(NoYCbCrCopy, SaysThatNoConversionOfYCbCrFramesIsSupported) {
  for (const auto& [name, format] : YCbCrFormats()) {
    const PX::VideoFrameRef video = MakeFrame(format, 17, 9, YCbCr(1, false));
    const PX::VideoFrameRef fullRange = MakeFrame(format, 17, 9, YCbCr(1, true));
    const PX::VideoFrameRef light = MakeFrame(RefHost::kBgraFloat, 17, 9, kSrgb);
    EXPECT_EQ(Copy(light, video), RefHost::kNotSupported) << name;
    EXPECT_EQ(Copy(video, light), RefHost::kNotSupported) << name;
    EXPECT_EQ(Copy(video, fullRange), RefHost::kNotSupported) << name;
  }
}

TEST(NoYCbCrCopy, LeavesTheDestinationAsItWas) {
  const PX::VideoFrameRef light = MakeFrame(RefHost::kBgraFloat, 17, 9, kSrgb);
  const PX::VideoFrameRef video =
      MakeFrame(RefHost::PlanarYCbCr(RefHost::ChromaFormat::C420, 8), 17, 9, YCbCr(1, false));
  FillWithNoise(light, 1);
  FillWithNoise(video, 2);
  const auto before = Samples(video);
  EXPECT_EQ(Copy(light, video), RefHost::kNotSupported);
  EXPECT_EQ(Samples(video), before);
}

}  // namespace
