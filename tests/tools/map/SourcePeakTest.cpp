// The peak that pictures are mapped from.

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "curves/St2084.h"
#include "refhost/orvmediatypes/H273.h"
#include "tests/tools/RunQuillon.h"
#include "tests/tools/io/StillTestSupport.h"
#include "tests/tools/video/ClipFiles.h"
#include "tools/quillon/io/WriteStill.h"

using namespace Quillon::Cli;

namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
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

  /// Writes a PQ picture of 812 nits that says this of its light.
  std::string Tagged812(const std::string& name, float masteringNits, ContentLight light) {
    const auto code = static_cast<float>(EncodeSt2084(812.0));
    StillOutput output;
    auto colors = Tagged(9, kPQ).Description();
    colors.masteringMaxLuminance = masteringNits;
    colors.masteringChromaticities = *RefHost::ChromaticitiesOf(Tagged(9, kPQ));
    output.frame =
        MakePicture(kSide, kSide, orvmediatypes::color::ColorSpace(colors), [code](int, int) {
          return Rgb{code, code, code};
        });
    output.light = light;
    WriteStill(output, folder_ / name);
    return folder_ / name;
  }

  /// What a run warns of.
  std::string Warned(const std::string& file, const std::vector<std::string>& options = {}) {
    std::vector<std::string> words = {"map", "--overwrite", file, folder_ / "out.png"};
    words.insert(words.end(), options.begin(), options.end());
    return RunQuillon(words).err;
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

TEST_F(SourcePeak, IsNotThatOfAMasteringDisplayThatCannotBe) {
  EXPECT_THAT(
      Warned(Tagged812("dark.png", 0.1F, {})),
      AllOf(HasSubstr("warning: the source tells a mastering display of 0.1 nits (less than "
                      "50), which cannot be and is ignored; it is mapped from a peak of 812"),
            HasSubstr("(measured)")));
  EXPECT_THAT(Warned(Tagged812("dim.png", 300.0F, {0.0F, 400.0F})),
              HasSubstr("a mastering display of 300 nits (less than MaxFALL, 400), which cannot"));
  EXPECT_THAT(
      Warned(Tagged812("low.png", 600.0F, {100.0F, 400.0F})),
      AllOf(HasSubstr("a MaxCLL of 100 nits (less than MaxFALL, 400), which cannot be and "
                      "is ignored; it is mapped from a peak of 600 nits (mastering display"),
            Not(HasSubstr("tells a mastering display"))));
  EXPECT_THAT(Warned(Tagged812("fine.png", 50.0F, {0.0F, 50.0F})), IsEmpty());
  EXPECT_THAT(Explained(folder_ / "fine.png"), HasSubstr("source peak       50 nits"));
  EXPECT_THAT(Warned(folder_ / "dark.png", {"--quiet"}), IsEmpty());
}

TEST_F(SourcePeak, OfAClipIsNotThatOfAMasteringDisplayThatCannotBeEither) {
  Encoding encoding = GreyEncoding();
  encoding.tags.colors.masteringMaxLuminance = 0.1F;
  encoding.tags.colors.masteringChromaticities = *RefHost::ChromaticitiesOf(Tagged(9, kPQ));
  encoding.tags.light = {100.0F, 400.0F};
  WriteGreyClip(folder_ / "clip.mkv", encoding, 2, 573);
  const RunResult run = RunQuillon({"map", "--to", "bt2100-pq", "--target-peak", "600",
                                    folder_ / "clip.mkv", folder_ / "out.mkv"});
  EXPECT_THAT(run.err, AllOf(HasSubstr("tells a mastering display of 0.1 nits"),
                             HasSubstr("tells a MaxCLL of 100 nits")));
  EXPECT_THAT(run.out, HasSubstr("peak 10000 nits (nominal peak of the transfer)"));
  // The result tells what is so.
  const RunResult result = RunQuillon({"inspect", folder_ / "out.mkv"});
  EXPECT_THAT(result.out, AllOf(HasSubstr("to 600 nits"), Not(HasSubstr("MaxCLL"))));
}
