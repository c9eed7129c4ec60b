// Row forms against the functions that they stand for, bit for bit, on every instruction set that
// this machine has.

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "cpu/QuillonImpl.h"
#include "cpu/rows/RowCurves.h"
#include "cpu/rows/RowForms.h"
#include "tests/refhost/Spaces.h"
#include "tonemap/Algorithms.h"
#include "tonemap/SupportParams.h"

namespace {

using Quillon::Bt2390MaxRGBToneMap;
using Quillon::Bt2390RGBByChannelToneMap;
using Quillon::InstructionSet;
using Quillon::SupportVector;
using Settings = PX::GamutMappingUtils::GamutMappingSettings;

struct Tone {
  std::string name;
  Quillon::ToneMapPixelFunction function;
  SupportVector params;
  float peak = 5.0F;
  float gain = 1.0F;
  float colorPreservation = 0.5F;
};

struct Gamut {
  std::string name;
  Quillon::GamutCompressionPixelFunction function;
  SupportVector params;
};

/// A BT.2390 curve with what the engine gives it: tables for these parameters, where they can be.
template <class Curve>
Curve WithTables(const SupportVector& params) {
  return Curve{MakeBt2390Tables(Curve::kForm, params)};
}

/// From 1000 to 203 nits, all values in units of 203 nits; BT.709 weights.
std::vector<Tone> Tones() {
  const SupportVector bt2390 = {0.0F,       0.751827F,  0.0F, 0.5806888F, 203.0F,  0.751827F, 0.0F,
                                0.7723702F, 0.6585553F, 0.3F, 0.2126F,    0.7152F, 0.0722F};
  SupportVector lifted = bt2390;
  lifted[0] = 0.05F;
  lifted[5] = 0.7F;
  lifted[6] = 0.02F;
  SupportVector kneeAtPeak = bt2390;
  kneeAtPeak[8] = 1.25F;
  // Leads the EETF below 0, where the decoding table ends.
  SupportVector beyond = bt2390;
  beyond[6] = -0.5F;
  const SupportVector car = {0.5F, 1.4F, 0.7F, 1.0F, 0.2126F, 0.7152F, 0.0722F};
  const SupportVector bt2446a = {13.26171F, 7.098651F, 0.0005F, 1.0F, 0.0F};
  return {
      {"none", {}, {}},
      {"hue-preserving", Quillon::HuePreservationToneMap{}, {5.0F, 0.5F, 1.0F}},
      {"hue-preserving, gained",
       Quillon::HuePreservationToneMap{},
       {5.0F, 0.0F, 1.0F},
       5.0F,
       1.7F,
       0.1F},
      {"car", Quillon::CARToneMap{}, car},
      {"car, threshold above the peak", Quillon::CARToneMap{}, car, 0.3F, 2.0F, 0.0F},
      {"bt2446a", Quillon::Bt2446AToneMap{}, bt2446a, 1000.0F},
      {"bt2446a, gained", Quillon::Bt2446AToneMap{}, {1.0F, 0.5F, 1.0F, 2.0F}, 1000.0F, 1.3F, 1.0F},
      {"bt2390 max", WithTables<Bt2390MaxRGBToneMap>(bt2390), bt2390},
      {"bt2390 max, lifted", WithTables<Bt2390MaxRGBToneMap>(lifted), lifted, 5.0F, 1.5F, 0.0F},
      {"bt2390 max, beyond", WithTables<Bt2390MaxRGBToneMap>(beyond), beyond},
      {"bt2390 max, knee at peak", WithTables<Bt2390MaxRGBToneMap>(kneeAtPeak), kneeAtPeak},
      {"bt2390 channel", WithTables<Bt2390RGBByChannelToneMap>(bt2390), bt2390},
      {"bt2390 channel, lifted", WithTables<Bt2390RGBByChannelToneMap>(lifted), lifted, 5.0F, 1.5F,
       0.0F},
      {"bt2390 channel, beyond", WithTables<Bt2390RGBByChannelToneMap>(beyond), beyond},
      {"bt2390 channel, knee at peak", WithTables<Bt2390RGBByChannelToneMap>(kneeAtPeak),
       kneeAtPeak},
  };
}

std::vector<Gamut> Gamuts() {
  return {{"no gamut", {}, {}},
          {"reinhard", Quillon::GamutCompressionReinhard{}, {2.0F}},
          {"reinhard to 1", Quillon::GamutCompressionReinhard{}, {1.0F}},
          {"desaturation", Quillon::GamutCompressionDesaturation{}, {0.2126F, 0.7152F, 0.0722F}}};
}

/// Light as in HDR pictures, some channels out of gamut, some beyond all tables.
std::vector<float> Picture(std::size_t pixels) {
  std::mt19937 random(1);
  std::lognormal_distribution<float> light(-1.0F, 1.6F);
  std::uniform_int_distribution<int> percent(0, 99);
  std::vector<float> floats(pixels * 4);
  for (float& value : floats) {
    value = light(random);
    const int kind = percent(random);
    if (kind < 5) value = -0.2F * value;
    if (kind == 5) value = 0.0F;
    if (kind == 6) value *= 100.0F;
  }
  return floats;
}

/// 30 special values in every combination of the three channels, each pixel with another alpha.
std::vector<float> SpecialPixels() {
  std::vector<float> values = {std::numeric_limits<float>::quiet_NaN(),
                               std::numeric_limits<float>::infinity(),
                               -std::numeric_limits<float>::infinity()};
  for (const float value :
       {0.0F, 0x1p-149F, 0x1p-126F, 0x1.fffffcp-127F, 1e-15F, 0x1.20fa1ep-50F, 0.0049F, 0.3F, 0.5F,
        0x1.000002p-1F, 1.0F, 5.0F, 49.26108F, 49.5F, 1e30F, 0x1.fffffep127F}) {
    values.push_back(value);
    values.push_back(-value);
  }
  values.erase(values.end() - 5, values.end());
  std::vector<float> floats;
  for (const float blue : values) {
    for (const float green : values) {
      for (const float red : values) {
        floats.insert(floats.end(), {blue, green, red, static_cast<float>(floats.size())});
      }
    }
  }
  return floats;
}

Settings SettingsOf(const Tone& tone) {
  Settings settings;
  settings.toneMapSettings.controls.peak = tone.peak;
  settings.toneMapSettings.controls.peakGain = tone.gain;
  settings.toneMapSettings.controls.colorPreservation = tone.colorPreservation;
  return settings;
}

bool SameBits(float first, float second) {
  return std::bit_cast<std::uint32_t>(first) == std::bit_cast<std::uint32_t>(second) ||
         (std::isnan(first) && std::isnan(second));
}

class RowForms : public testing::TestWithParam<InstructionSet> {
 protected:
  void SetUp() override {
    if (!Quillon::CanRun(GetParam())) GTEST_SKIP() << "this processor lacks the instruction set";
  }

  /// Whether `pixels` mapped as one row of them all has the bits of pixel by pixel. Ends at the
  /// first that differs. Returns whether there is a row form for these steps.
  bool Compare(const Gamut& gamut, const Tone& tone, const std::vector<float>& pixels) {
    SCOPED_TRACE(gamut.name + ", " + tone.name);
    const Settings settings = SettingsOf(tone);
    std::vector<float> rows = pixels;
    if (!Quillon::MapRows(GetParam(),
                          {tone.function, gamut.function, tone.params, gamut.params, settings},
                          rows.data(), 1, static_cast<float>(pixels.size() / 4))) {
      EXPECT_EQ(std::memcmp(rows.data(), pixels.data(), pixels.size() * sizeof(float)), 0);
      return false;
    }
    for (std::size_t place = 0; place < pixels.size(); place += 4) {
      std::vector<float> pixel(&pixels[place], &pixels[place] + 4);
      if (gamut.function) gamut.function(pixel.data(), gamut.params, settings);
      if (tone.function) tone.function(pixel.data(), tone.params, settings.toneMapSettings);
      for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_TRUE(SameBits(rows[place + i], pixel[i]))
            << std::hexfloat << "pixel " << place / 4 << " float " << i << ": " << rows[place + i]
            << " instead of " << pixel[i] << " from " << pixels[place] << ", " << pixels[place + 1]
            << ", " << pixels[place + 2];
      }
      if (HasFailure()) break;
    }
    return true;
  }

  void CompareAll(const std::vector<float>& pixels) {
    for (const Gamut& gamut : Gamuts()) {
      for (const Tone& tone : Tones()) {
        const bool hasRowForm = Compare(gamut, tone, pixels);
        EXPECT_EQ(hasRowForm, tone.name.find("beyond") == std::string::npos)
            << gamut.name << ", " << tone.name;
        if (HasFailure()) return;
      }
    }
  }
};

TEST_P(RowForms, GiveTheBitsOfThePixelFunctionsOnAPicture) { CompareAll(Picture(20000)); }

TEST_P(RowForms, GiveTheBitsOfThePixelFunctionsOnSpecialValuesInEveryChannel) {
  const std::vector<float> pixels = SpecialPixels();
  ASSERT_EQ(pixels.size(), 30U * 30U * 30U * 4U);
  CompareAll(pixels);
}

TEST_P(RowForms, AreThereForEveryCurveOfTheTableAsTheEngineBindsIt) {
  auto settings = Settings().toneMapSettings;
  settings.sourceColorSpace = Space(9, 16, 1000);
  settings.destinationColorSpace = Space(1, 13);
  for (const Quillon::ToneCurveFacts& curve : Quillon::kToneCurves) {
    const auto* algorithm = Quillon::FindToneMapAlgorithm(curve.type);
    auto resolved = settings;
    resolved.algorithmType = curve.type;
    Tone tone = {std::string(curve.id), {}, {}};
    Quillon::GetToneMappingSupportParams(resolved, tone.params);
    tone.function = algorithm->bind != nullptr ? algorithm->bind(tone.params) : algorithm->curve;
    tone.peak = resolved.controls.peak;
    std::vector<float> pixel = {1.0F, 2.0F, 40.0F, 1.0F};
    tone.function(pixel.data(), tone.params, resolved);
    EXPECT_LT(pixel[2], 40.0F) << curve.id;
    EXPECT_TRUE(Compare(Gamuts()[0], tone, Picture(2000))) << curve.id;
  }
}

TEST_P(RowForms, GiveTheBitsOfThePixelFunctionsAtEveryWidthTo70) {
  const std::vector<float> picture = Picture(70);
  for (std::size_t width = 1; width <= 70; ++width) {
    CompareAll(std::vector<float>(picture.begin(),
                                  picture.begin() + static_cast<std::ptrdiff_t>(width * 4)));
    ASSERT_FALSE(HasFailure()) << "width " << width;
  }
}

TEST_P(RowForms, KeepTheBitsOfEveryAlpha) {
  // Signalling NaN among them: arithmetic changes it.
  const auto alpha = [](std::size_t pixel) {
    return std::bit_cast<float>(0x7FA00000U + static_cast<std::uint32_t>(pixel + 1) * 0x80000371U);
  };
  for (const Gamut& gamut : Gamuts()) {
    for (const Tone& tone : Tones()) {
      std::vector<float> rows = Picture(700);
      for (std::size_t i = 0; i < 700; ++i) rows[i * 4 + 3] = alpha(i);
      const Settings settings = SettingsOf(tone);
      std::vector<float> pixels = rows;
      MapRows(GetParam(), {tone.function, gamut.function, tone.params, gamut.params, settings},
              rows.data(), 1, 700.0F);
      for (std::size_t i = 0; i < 700; ++i) {
        float* pixel = &pixels[i * 4];
        if (gamut.function) gamut.function(pixel, gamut.params, settings);
        if (tone.function) tone.function(pixel, tone.params, settings.toneMapSettings);
        const auto expected = std::bit_cast<std::uint32_t>(alpha(i));
        ASSERT_EQ(std::bit_cast<std::uint32_t>(rows[i * 4 + 3]), expected)
            << gamut.name << ", " << tone.name << ", row's pixel " << i;
        ASSERT_EQ(std::bit_cast<std::uint32_t>(pixel[3]), expected)
            << gamut.name << ", " << tone.name << ", pixel " << i;
      }
    }
  }
}

TEST_P(RowForms, LeaveAPixelAtTheKneeOfCarAloneBesideOneAboveIt) {
  // A destination's peak below the knee: what the curve takes for above it becomes darker.
  const Tone tone = {"car", Quillon::CARToneMap{}, {0.5F, 1.4F, 0.7F, 0.25F, 0.25F, 0.5F, 0.25F}};
  const Settings settings = SettingsOf(tone);
  const std::vector<float> atKnee = {0.25F, 0.5F, 0.125F, 1.0F};
  std::vector<float> rows;
  for (int i = 0; i < 64; ++i) {
    const bool isAbove = i % 2 == 1;
    for (const float value : atKnee) rows.push_back(isAbove ? 3.0F * value : value);
  }
  ASSERT_TRUE(Quillon::MapRows(GetParam(), {tone.function, {}, tone.params, {}, settings},
                               rows.data(), 1, 64.0F));
  for (std::size_t i = 0; i < 64; ++i) {
    const bool isSame = std::equal(atKnee.begin(), atKnee.end(), &rows[i * 4]);
    EXPECT_EQ(isSame, i % 2 == 0) << i;
    if (i % 2 == 1) {
      EXPECT_LT(rows[i * 4 + 1], 1.5F) << i;
    }
  }
}

TEST_P(RowForms, WalkPaddedRowsPackedAndTouchNothingBehindThem) {
  for (const Tone& tone : Tones()) {
    const Gamut gamut = Gamuts()[1];
    const Settings settings = SettingsOf(tone);
    const std::vector<float> before = Picture(40 * 7);
    std::vector<float> rows = before;
    if (!Quillon::MapRows(GetParam(),
                          {tone.function, gamut.function, tone.params, gamut.params, settings},
                          rows.data(), 7, 37.0F)) {
      continue;
    }
    for (std::size_t place = 0; place < before.size(); place += 4) {
      std::vector<float> pixel(&before[place], &before[place] + 4);
      if (place / 4 < 37 * 7) {
        gamut.function(pixel.data(), gamut.params, settings);
        if (tone.function) tone.function(pixel.data(), tone.params, settings.toneMapSettings);
      }
      for (std::size_t i = 0; i < 4; ++i) {
        ASSERT_TRUE(SameBits(rows[place + i], pixel[i])) << tone.name << " float " << place + i;
      }
    }
  }
}

TEST_P(RowForms, CountColumnsAsTheRowWalkDoes) {
  const Tone tone = {"double", Quillon::HuePreservationToneMap{}, {0.5F, 0.5F, 1.0F}, 1.0F, 2.0F};
  const Settings settings = SettingsOf(tone);
  const struct {
    int rows;
    float width;
    int mapped;
  } kWalks[] = {{2, 3.0F, 6},  {1, 2.5F, 3}, {0, 3.0F, 0},
                {-1, 3.0F, 0}, {2, 0.0F, 0}, {2, -3.0F, 0}};
  for (const auto& walk : kWalks) {
    std::vector<float> pixels(40, 1.0F);
    ASSERT_TRUE(Quillon::MapRows(GetParam(), {tone.function, {}, tone.params, {}, settings},
                                 pixels.data(), walk.rows, walk.width));
    for (int i = 0; i < 10; ++i) {
      EXPECT_EQ(pixels[static_cast<std::size_t>(i) * 4], i < walk.mapped ? 2.0F : 1.0F)
          << walk.rows << " rows of " << walk.width;
    }
  }
}

TEST_P(RowForms, AreNotThereForBt2390WithoutTablesForItsParameters) {
  const SupportVector params = Tones()[11].params;
  SupportVector others = params;
  others[8] = 0.4F;
  for (const Quillon::ToneMapPixelFunction& function : std::vector<Quillon::ToneMapPixelFunction>{
           Bt2390MaxRGBToneMap{}, Bt2390RGBByChannelToneMap{},
           WithTables<Bt2390MaxRGBToneMap>(others),
           WithTables<Bt2390RGBByChannelToneMap>(others)}) {
    EXPECT_FALSE(Compare(Gamuts()[0], {"bt2390", function, params}, Picture(100)));
  }
}

TEST_P(RowForms, AreNotThereForOtherFunctions) {
  const Settings settings;
  std::vector<float> pixels(16, 0.5F);
  const Quillon::ToneMapPixelFunction other = [](float* pixel, const SupportVector&, const auto&) {
    pixel[0] = 7.0F;
  };
  const Quillon::GamutCompressionPixelFunction otherGamut = [](float* pixel, const SupportVector&,
                                                               const auto&) { pixel[0] = 7.0F; };
  EXPECT_FALSE(Quillon::MapRows(GetParam(), {other, {}, {}, {}, settings}, pixels.data(), 1, 4.0F));
  EXPECT_FALSE(
      Quillon::MapRows(GetParam(), {{}, otherGamut, {}, {}, settings}, pixels.data(), 1, 4.0F));
  EXPECT_EQ(pixels, std::vector<float>(16, 0.5F));
}

TEST_P(RowForms, AreNotThereForWidthsThatFloatsCannotCount) {
  const Settings settings;
  std::vector<float> pixels(16, 0.5F);
  EXPECT_FALSE(Quillon::MapRows(GetParam(), {{}, {}, {}, {}, settings}, pixels.data(), 1, 0x1p24F));
  EXPECT_FALSE(
      Quillon::MapRows(GetParam(), {{}, {}, {}, {}, settings}, pixels.data(), 1, std::nanf("")));
}

/// Pixels that were handed to the host, by their first channel.
std::vector<float>& HandedToTheHost() {
  static std::vector<float> kLight;
  return kLight;
}

TEST(RowFormsOfTheEngine, AskAHostWithAnotherPQForEveryPixelBeyondTheTables) {
  const auto tables = MakeBt2390Tables(Quillon::Bt2390Form::ByChannel, Tones()[11].params);
  const SupportVector params = Tones()[11].params;
  Quillon::RowCurves curves;
  curves.tone = Quillon::kRowToneOf<Bt2390RGBByChannelToneMap>;
  curves.toneParams = params.data();
  curves.controls = {.peak = 5.0F, .colorPreservation = 0.0F};
  curves.eetf = Quillon::EetfParamsOf(params.data());
  curves.tables.mapped = tables->mapped.data();
  curves.tables.decoded = tables->decoded.data();
  curves.mapBeyondTables = [](const Quillon::RowCurves&, float* pixel) {
    HandedToTheHost().push_back(pixel[0]);
    pixel[0] = pixel[1] = pixel[2] = 0.125F;
  };
  for (const bool encodesAsSt2084 : {false, true}) {
    curves.encodesAsSt2084 = encodesAsSt2084;
    HandedToTheHost().clear();
    // 700 pixels, every seventh negative: 0.01, 0.02, ... are their first channels.
    std::vector<float> pixels(700 * 4, 0.2F);
    std::vector<float> expected;
    for (std::size_t i = 0; i < 700; i += 7) {
      pixels[i * 4] = static_cast<float>(i / 7) * 0.001F;
      pixels[i * 4 + 1] = -0.1F;
      expected.push_back(pixels[i * 4]);
    }
    Quillon::MapRunBaseline(curves, pixels.data(), 700);
    std::sort(HandedToTheHost().begin(), HandedToTheHost().end());
    EXPECT_EQ(HandedToTheHost(), encodesAsSt2084 ? std::vector<float>{} : expected);
    for (std::size_t i = 0; i < 700; ++i) {
      const bool isTheHosts = pixels[i * 4] == 0.125F && pixels[i * 4 + 1] == 0.125F;
      EXPECT_EQ(isTheHosts, !encodesAsSt2084 && i % 7 == 0) << i;
    }
  }
}

TEST(RowFormsOfTheEngine, RunWhenRowsAreMapped) {
  const std::vector<Tone> tones = Tones();
  const Tone& tone = tones[1];
  std::vector<float> pixels = Picture(100);
  std::vector<float> rows = pixels;
  Quillon::QuillonImpl().GenerateGamutMappedRows(tone.function, {}, pixels.data(), 2, 200, 50.0F,
                                                 tone.params, {}, SettingsOf(tone));
  ASSERT_TRUE(Quillon::MapRows(Quillon::BestInstructionSet(),
                               {tone.function, {}, tone.params, {}, SettingsOf(tone)}, rows.data(),
                               2, 50.0F));
  EXPECT_EQ(pixels, rows);
}

std::string NameOf(const testing::TestParamInfo<InstructionSet>& info) {
  switch (info.param) {
    case InstructionSet::Baseline:
      return "Baseline";
    case InstructionSet::Avx2:
      return "Avx2";
    case InstructionSet::Avx512:
      return "Avx512";
  }
  return "Unknown";
}

INSTANTIATE_TEST_SUITE_P(EveryInstructionSet, RowForms,
                         testing::Values(InstructionSet::Baseline, InstructionSet::Avx2,
                                         InstructionSet::Avx512),
                         NameOf);

}  // namespace
