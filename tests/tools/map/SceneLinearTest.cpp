// Scene-linear pictures: the light of their 1.0, and exposure.

#include <cmath>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mapper/Frames.h"
#include "tests/tools/RunQuillon.h"
#include "tests/tools/io/StillTestSupport.h"
#include "tools/quillon/io/WriteStill.h"

using namespace Quillon::Cli;

namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr int kSide = 16;
constexpr int kLinear = 8;

class SceneLinear : public ::testing::Test {
 protected:
  /// Writes a float EXR in BT.709 primaries whose 1.0 is `white` nits.
  std::string Exr(const std::string& name, const RgbFunction& color, int white = 203) {
    StillOutput output;
    output.frame = MakePicture(kSide, kSide, Tagged(1, kLinear), color);
    output.settings = Quillon::Mapper::ColorManagementFor(white);
    output.depth = 32;
    WriteStill(output, folder_ / name);
    return folder_ / name;
  }

  std::string Grey(const std::string& name, float value, int white = 203) {
    return Exr(
        name,
        [value](int, int) {
          return Rgb{value, value, value};
        },
        white);
  }

  RunResult Map(const std::vector<std::string>& options, const std::string& file) {
    std::vector<std::string> words = {"map", "--overwrite", file, folder_ / "out.png"};
    words.insert(words.end(), options.begin(), options.end());
    const RunResult run = RunQuillon(words);
    EXPECT_EQ(run.exitCode, 0) << run.err;
    return run;
  }

  /// The first pixel of what was mapped last, as light.
  double Light() const {
    const double signal = PixelAt(AsFloat(ReadStill(folder_ / "out.png").frame), 0, 0)[1];
    return std::pow((signal + 0.055) / 1.055, 2.4);
  }

  ScratchFolder folder_;
};

}  // namespace

TEST_F(SceneLinear, LightIsThatOfTheFilesWhiteLuminance) {
  // 0.5 of 203 nits is a quarter of a white of 406 nits, given or not.
  const std::string file = Grey("a.exr", 0.5F, 203);
  EXPECT_THAT(Map({}, file).err, IsEmpty());
  EXPECT_NEAR(Light(), 0.5, 0.005);
  EXPECT_THAT(Map({"--white", "406"}, file).err,
              HasSubstr("note: the file says that its 1.0 is 203 nits, as which it is mapped"));
  EXPECT_NEAR(Light(), 0.25, 0.005);

  const RunResult run = Map({"--explain"}, Grey("bright.exr", 4.0F, 1000));
  EXPECT_THAT(run.out, HasSubstr("source peak       4000 nits = 19.7044 in linear light"));
  EXPECT_THAT(RunQuillon({"inspect", "--measure", folder_ / "bright.exr"}).out,
              HasSubstr("steady peak 4000 nits"));
}

TEST_F(SceneLinear, LightOfASequenceIsThatOfEachFile) {
  Grey("f.0.exr", 4.0F, 100);
  Grey("f.1.exr", 2.0F, 500);
  const RunResult run =
      RunQuillon({"map", "--explain", folder_ / "f.%d.exr", folder_ / "o.%d.png"});
  EXPECT_THAT(run.out, HasSubstr("source peak       1000 nits"));
}

TEST_F(SceneLinear, WhiteLuminanceIsNoneOfASignal) {
  const std::string file = Grey("signal.exr", 0.5F, 1000);
  EXPECT_THAT(Map({"--from", "bt2100-hlg"}, file).err, Not(HasSubstr("1000 nits")));
}

TEST_F(SceneLinear, ExposureMultipliesTheLightAndThePeak) {
  const std::string file = Grey("a.exr", 0.1F);
  Map({"--exposure", "2"}, file);
  EXPECT_NEAR(Light(), 0.4, 0.005);
  Map({"--exposure", "-1"}, file);
  EXPECT_NEAR(Light(), 0.05, 0.002);
  EXPECT_THAT(Map({"--exposure", "4"}, file).out,
              AllOf(HasSubstr("exposure +4 stops, peak 324.8"), HasSubstr("(measured)")));
  EXPECT_THAT(
      Map({"--exposure", "1", "--peak", "500", "--explain"}, file).out,
      AllOf(HasSubstr("source peak       1000 nits"), HasSubstr("exposure          +1 stops")));
  // BT.2390 works on PQ: the light is multiplied before.
  const std::string bright = Grey("b.exr", 3.0F);
  Map({"--algorithm", "bt2390-rgb", "--exposure", "1"}, bright);
  const double exposed = Light();
  Map({"--algorithm", "bt2390-rgb"}, Grey("c.exr", 6.0F));
  EXPECT_NEAR(exposed, Light(), 1e-6);
}

TEST_F(SceneLinear, AutomaticExposureBringsTheLogAverageToGrey) {
  const auto twoGreys = [](float zero) {
    return [zero](int x, int y) {
      if (y == 0 && x > 0) return Rgb{zero, zero, zero};
      const float value = (x + y) % 2 == 0 ? 0.01F : 0.04F;
      return Rgb{value, value, value};
    };
  };
  // The log-average of equal shares of 0.01 and 0.04 is 0.02, 3.17 stops below 0.18.
  for (const float none : {0.0F, NAN, -1.0F}) {
    const RunResult run = Map({"--exposure", "auto", "--explain"}, Exr("a.exr", twoGreys(none)));
    EXPECT_THAT(run.out, AllOf(HasSubstr("exposure          +3.1"),
                               HasSubstr("to 36.54; 0.18 of white is 36.54)")));
    std::filesystem::remove(folder_ / "a.exr");
  }
  EXPECT_THAT(Map({"--exposure", "auto"}, Grey("grey.exr", 0.02F)).out,
              HasSubstr("exposure +3.16993 stops (auto: log-average 4.06 nits to 36.54"));
  EXPECT_NEAR(Light(), 0.18, 0.005);
  // Within 8 stops; a picture without light stays as it is.
  EXPECT_THAT(Map({"--exposure", "auto"}, Grey("dark.exr", 1e-5F)).out, HasSubstr("+8 stops"));
  EXPECT_THAT(Map({"--exposure", "auto"}, Grey("sun.exr", 1e5F)).out, HasSubstr("-8 stops"));
  EXPECT_THAT(Map({"--exposure", "auto"}, Grey("black.exr", 0.0F)).out, HasSubstr("+0 stops"));
}

TEST_F(SceneLinear, ExposureOfASequenceIsOneForAll) {
  Grey("f.0.exr", 0.01F);
  Grey("f.1.exr", 0.04F);
  const RunResult run = RunQuillon(
      {"map", "--to", "srgb", "--exposure", "auto", folder_ / "f.%d.exr", folder_ / "out.%d.png"});
  ASSERT_EQ(run.exitCode, 0) << run.err;
  EXPECT_THAT(run.out, HasSubstr("exposure +3.16993 stops (auto: log-average 4.06 nits"));
  std::filesystem::copy(folder_ / "out.0.png", folder_ / "out.png");
  EXPECT_NEAR(Light(), 0.09, 0.003);
}

TEST_F(SceneLinear, LightAloneIsExposed) {
  const std::string png = folder_ / "c.png";
  ASSERT_EQ(RunQuillon({"chart", "--size", "32x32", png}).exitCode, 0);
  const RunResult run = RunQuillon({"map", "--exposure", "1", png, folder_ / "o.png"});
  EXPECT_EQ(run.exitCode, 2);
  EXPECT_THAT(run.err, AllOf(HasSubstr("--exposure is for scene-linear light"),
                             HasSubstr("BT.2100 PQ (CICP 9/16/0)")));
  for (const std::string wrong : {"bright", "nan", "21", "+1", "1 stop"}) {
    const RunResult refused = RunQuillon({"map", "--exposure=" + wrong, png, folder_ / "o.png"});
    EXPECT_EQ(refused.exitCode, 2) << wrong;
    EXPECT_THAT(refused.err, HasSubstr("neither a number of stops"));
  }
}

TEST_F(SceneLinear, PeakOfBt2446AIsHeldWherePQEnds) {
  const std::string file = Grey("a.exr", 1.0F);
  const std::vector<std::string> bt2446a = {"--algorithm", "bt2446a", "--peak"};
  const auto with = [&](const char* peak) {
    std::vector<std::string> options = bt2446a;
    options.emplace_back(peak);
    return Map(options, file).err;
  };
  EXPECT_THAT(with("10000"), Not(HasSubstr("held there")));
  const double held = Light();
  EXPECT_THAT(with("100000"), HasSubstr("note: the source peak (100000 nits) is beyond 10000 nits, "
                                        "where bt2446a ends: it is held there"));
  EXPECT_EQ(Light(), held);
}

TEST_F(SceneLinear, LightIsNamedByItsPrimaries) {
  // 0.5 of BT.2020's red, in a file that says BT.709.
  const std::string file = Exr("a.exr", [](int, int) { return Rgb{0.5F, 0.4F, 0.3F}; });
  for (const char* name : {"linear-bt709", "linear-p3", "linear-bt2020"}) {
    EXPECT_THAT(Map({"--from", name}, file).out, HasSubstr("linear light (CICP")) << name;
  }
  EXPECT_THAT(Map({"--from", "acescg"}, file).out, HasSubstr("ACEScg (CICP 2/8/0)"));
  const std::string aces = ReadFile(folder_ / "out.png");
  EXPECT_THAT(Map({"--from", "aces2065-1"}, file).out, HasSubstr("ACES2065-1 (CICP 2/8/0)"));
  EXPECT_NE(ReadFile(folder_ / "out.png"), aces);
}

TEST_F(SceneLinear, FloatsAreNoGammaSignal) {
  const std::string file = Grey("a.exr", 0.5F);
  Grey("f.0.exr", 0.5F);
  const std::vector<std::pair<std::string, std::string>> meant = {
      {"srgb", "--from linear-bt709"},
      {"p3-d65", "--from linear-p3"},
      {"bt2020", "--from linear-bt2020"}};
  for (const auto& [given, name] : meant) {
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"map", "--from", given, file, folder_ / "o.png"},
          {"map", "--from", given, folder_ / "f.%d.exr", folder_ / "o.%d.png"},
          {"inspect", "--from", given, file},
          {"compare", "--from-a", given, file, file}}) {
      const RunResult run = RunQuillon(words);
      EXPECT_EQ(run.exitCode, 2) << words[0] << ' ' << given;
      EXPECT_THAT(run.err, AllOf(HasSubstr("holds linear light in floats"), HasSubstr(name)));
    }
  }
}

TEST_F(SceneLinear, RadianceWithoutPrimariesIsBt709AndSaysSo) {
  std::string hdr = "#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 1 +X 2\n";
  for (int pixel = 0; pixel < 2; ++pixel) hdr += "\x80\x80\x80\x81";
  WriteFile(folder_ / "a.hdr", hdr);
  const RunResult run = Map({}, folder_ / "a.hdr");
  EXPECT_THAT(run.out, HasSubstr("linear light (CICP 1/8/0)"));
  EXPECT_THAT(run.err, HasSubstr("it tells no primaries: taken as BT.709"));
}

TEST_F(SceneLinear, PicturesThatBt2390ShowsInStepsAreNoted) {
  // Two rows of 16 are dim, an eighth; then less than a twentieth.
  const auto dimmed = [](int pixels) {
    return [pixels](int x, int y) {
      const float value = y * kSide + x < pixels ? 0.5F / 203.0F : 4.0F;
      return Rgb{value, value, value};
    };
  };
  const std::string dark = Exr("dark.exr", dimmed(32));
  const std::vector<std::string> bt2390 = {"--algorithm", "bt2390-maxrgb"};
  EXPECT_THAT(Map(bt2390, dark).err,
              HasSubstr("note: 13 % of the pixels have light below 1 nit, which BT.2390 takes in"));
  EXPECT_THAT(Map({}, dark).err, IsEmpty());
  EXPECT_THAT(Map(bt2390, Exr("light.exr", dimmed(12))).err, IsEmpty());
}

TEST_F(SceneLinear, APeakThatChangesOnlyPartIsNoted) {
  const std::string file = Grey("a.exr", 4.0F);
  for (const std::string algorithm : {"bt2390-maxrgb", "bt2390-rgb", "car"}) {
    EXPECT_THAT(Map({"--algorithm", algorithm, "--peak", "2000"}, file).err,
                HasSubstr("note: the curve of " + algorithm + " is the same from every peak"));
    EXPECT_THAT(Map({"--algorithm", algorithm}, file).err, IsEmpty());
    // It is so: grey comes out alike.
    const double light = Light();
    Map({"--algorithm", algorithm, "--peak", "5000"}, file);
    EXPECT_EQ(Light(), light) << algorithm;
  }
  EXPECT_THAT(Map({"--algorithm", "hue", "--peak", "2000"}, file).err, IsEmpty());
}

TEST_F(SceneLinear, TheKneeThatWasChosenIsExplained) {
  const std::string file = Grey("a.exr", 4.0F);
  EXPECT_THAT(Map({"--explain"}, file).out,
              testing::ContainsRegex("knee +0\\.[0-9]+ of the destination peak, [0-9.]+ nits "
                                     "\\(chosen automatically\\)"));
  EXPECT_THAT(Map({"--explain", "--algorithm", "hue", "--knee", "0.25"}, file).out,
              HasSubstr("knee              0.25 of the destination peak, 50.75 nits\n"));
}
