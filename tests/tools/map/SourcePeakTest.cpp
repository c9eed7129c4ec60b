// The peak that pictures are mapped from.

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "curves/St2084.h"
#include "tests/tools/RunQuillon.h"
#include "tests/tools/io/StillTestSupport.h"
#include "tests/tools/video/ClipFiles.h"
#include "tools/quillon/io/WriteStill.h"

using namespace Quillon::Cli;

namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr int kSide = 200;  // 40000 pixels: 4 of them are one in ten thousand
constexpr int kLinear = 8;
constexpr int kPQ = 16;

class SourcePeak : public ::testing::Test {
 protected:
  /// Writes a picture of one grey with a few pixels of another, in BT.2020 primaries.
  std::string Grey(const std::string& name, int transfer, float grey, float few, int count) {
    StillOutput output;
    output.frame = MakePicture(kSide, kSide, Tagged(9, transfer), [=](int x, int y) {
      const float value = y == 5 && x < count ? few : grey;
      return Rgb{value, value, value};
    });
    if (transfer == kLinear) output.depth = 32;
    WriteStill(output, folder_ / name);
    return folder_ / name;
  }

  std::string Explained(const std::string& file, const std::vector<std::string>& options = {}) {
    std::vector<std::string> words = {"map", "--overwrite", "--explain", file, folder_ / "out.png"};
    words.insert(words.end(), options.begin(), options.end());
    const RunResult run = RunQuillon(words);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return run.out;
  }

  ScratchFolder folder_;
};

}  // namespace

TEST_F(SourcePeak, OfAStillIsNotThatOfABadPixel) {
  const std::string file = Grey("a.exr", kLinear, 4.0F, 500.0F, 4);
  EXPECT_THAT(Explained(file),
              HasSubstr("source peak       812 nits = 4 in linear light (measured)"));
  EXPECT_THAT(Explained(file, {"--peak", "measure"}), HasSubstr("812 nits = 4 in linear light"));
  EXPECT_THAT(Explained(Grey("five.exr", kLinear, 4.0F, 500.0F, 5)),
              HasSubstr("101500 nits = 500 in linear light (measured)"));
}

TEST_F(SourcePeak, IsTheSameInMapAndInInspect) {
  const std::string file = Grey("a.exr", kLinear, 4.0F, 500.0F, 4);
  const RunResult run = RunQuillon({"inspect", "--measure", "--json", "-", file});
  const auto found = nlohmann::json::parse(run.out);
  EXPECT_EQ(found["peak"]["nits"], 812.0);
  EXPECT_EQ(found["measured"]["steady_peak_nits"], 812.0);
  EXPECT_EQ(found["measured"]["max_cll_nits"], 101500.0);
}

TEST_F(SourcePeak, IsOfThePercentileThatIsNamed) {
  const std::string file = Grey("a.exr", kLinear, 4.0F, 500.0F, 40);  // one in a thousand
  EXPECT_THAT(Explained(file), HasSubstr("101500 nits"));
  EXPECT_THAT(Explained(file, {"--peak", "measure:99.9"}),
              HasSubstr("812 nits = 4 in linear light (measured at 99.9 %)"));
  EXPECT_THAT(Explained(Grey("one.exr", kLinear, 4.0F, 500.0F, 1), {"--peak", "measure:100"}),
              HasSubstr("101500 nits"));
  for (const std::string percent : {"0", "-1", "100.1", "nan", "", "x", "99.9%"}) {
    const RunResult run =
        RunQuillon({"map", "--peak", "measure:" + percent, file, folder_ / "refused.png"});
    EXPECT_EQ(run.exitCode, 2) << percent;
    EXPECT_THAT(run.err, HasSubstr("'" + percent + "' is no percentile of the pixels"));
  }
  EXPECT_EQ(RunQuillon({"map", "--peak", "metadata:5", file, folder_ / "refused.png"}).exitCode, 2);
}

TEST_F(SourcePeak, OfAClipIsOfThePercentileThatIsNamedToo) {
  // 64x48 pixels a frame: its luma is one code value but for a row in the second.
  const std::string clip = folder_ / "clip.mkv";
  WriteGreyClip(clip, GreyEncoding(), 3, 573);
  const auto peak = [&](const std::string& option) {
    const RunResult run =
        RunQuillon({"map", "--dry-run", "--peak", option, clip, folder_ / "o.mkv"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return run.out;
  };
  const std::string steady = peak("measure");
  EXPECT_THAT(steady, HasSubstr("(measured)"));
  // Kept levels are of a percentile; another one is measured anew.
  EXPECT_THAT(peak("measure:50"), HasSubstr("(measured at 50 %)"));
  EXPECT_THAT(ReadFile(folder_ / "clip.mkv.levels.json"), HasSubstr("\"steady_percent\": 50.0"));
  EXPECT_EQ(peak("measure"), steady);
  EXPECT_THAT(peak("scenes:50"), HasSubstr("(measured at 50 %, scene by scene)"));
}

TEST_F(SourcePeak, OfAPQStillWithoutLightLevelsIsMeasured) {
  const auto code = static_cast<float>(EncodeSt2084(812.0));
  const std::string file = Grey("a.png", kPQ, code, 1.0F, 4);
  EXPECT_THAT(Explained(file), AllOf(HasSubstr("source peak       812."), HasSubstr("(measured)")));
  EXPECT_THAT(Explained(file, {"--peak", "metadata"}),
              HasSubstr("source peak       10000 nits = 49.2611 in linear light (nominal peak"));
  const RunResult run = RunQuillon({"inspect", file});
  EXPECT_THAT(run.out, Not(HasSubstr("peak to map from")));
  EXPECT_THAT(RunQuillon({"inspect", "--measure", file}).out,
              AllOf(HasSubstr("peak to map from  812"), HasSubstr("(measured)")));
}

TEST_F(SourcePeak, OfAPQClipWithoutLightLevelsIsThatOfPQ) {
  WriteGreyClip(folder_ / "clip.mkv", GreyEncoding(), 2, 573);
  const RunResult run = RunQuillon({"map", "--dry-run", folder_ / "clip.mkv", folder_ / "o.mkv"});
  EXPECT_THAT(run.out, HasSubstr("source peak       10000 nits"));
}

TEST_F(SourcePeak, IsNotMeasuredBeyondWhatPQAndHlgShow) {
  const std::string file = Grey("a.exr", kLinear, 1.1F, 0.0F, 0);  // a signal, as told below
  EXPECT_THAT(Explained(file, {"--from", "bt2100-hlg", "--peak", "measure"}),
              HasSubstr("source peak       1000 nits"));
  EXPECT_THAT(Explained(file, {"--from", "bt2100-pq"}), HasSubstr("source peak       10000 nits"));
}

TEST_F(SourcePeak, ThatIsMeasuredAndNotAboveWhiteLeavesThePictureAlone) {
  const std::string gradient = folder_ / "gradient.exr";
  StillOutput output;
  output.frame = MakePicture(kSide, kSide, Tagged(1, kLinear), [](int x, int y) {
    const bool bad = x == 3 && y == 3;
    return bad ? Rgb{90.0F, 90.0F, 90.0F} : Gradient(x, y, kSide, kSide);
  });
  output.depth = 32;
  WriteStill(output, gradient);
  EXPECT_THAT(Explained(gradient), HasSubstr("tone mapping      does not apply"));
  ASSERT_EQ(RunQuillon({"map", "--algorithm", "none", gradient, folder_ / "none.png"}).exitCode, 0);
  EXPECT_EQ(ReadFile(folder_ / "out.png"), ReadFile(folder_ / "none.png"));
  EXPECT_THAT(Explained(gradient, {"--peak", "measure:100"}), HasSubstr("knee"));
}
