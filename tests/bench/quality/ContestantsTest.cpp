#include <algorithm>
#include <set>

#include <gtest/gtest.h>

#include "bench/quality/Contestants.h"
#include "bench/quality/FilterChain.h"
#include "mapper/Mapping.h"

using namespace Quality;

namespace {

/// Luminance of a grey after the mapping from a peak.
double ShownGrey(const Contestant& contestant, double nits, double peakNits) {
  const auto mapped = contestant.map({EncodePQ({nits, nits, nits})}, peakNits);
  const Light light = ShownBy(mapped.at(0));
  EXPECT_NEAR(light.red, light.green, 0.01 * light.green + 1e-3) << contestant.name;
  EXPECT_NEAR(light.blue, light.green, 0.01 * light.green + 1e-3) << contestant.name;
  return light.green;
}

const Contestant& Named(const std::vector<Contestant>& contestants, const std::string& name,
                        const std::string& settings) {
  return *std::find_if(contestants.begin(), contestants.end(), [&](const Contestant& each) {
    return each.name == name && each.settings == settings;
  });
}

TEST(QuillonContestants, AreAllAlgorithmsWithAllSettings) {
  const auto contestants = QuillonContestants();
  std::set<std::string> names;
  std::set<std::string> settings;
  for (const Contestant& contestant : contestants) {
    names.insert(contestant.name);
    settings.insert(contestant.settings);
  }
  EXPECT_EQ(names.size(), Quillon::Mapper::Algorithms().size());
  EXPECT_EQ(contestants.size(), names.size() * settings.size());
  for (const char* setting : {"default", "preserve 0.5", "preserve 0.8", "preserve 1",
                              "gamut desaturate", "gamut reinhard"}) {
    EXPECT_TRUE(settings.contains(setting)) << setting;
  }
}

TEST(QuillonContestants, ShowLightAsItIsWithoutACurve) {
  const auto contestants = QuillonContestants();
  const Contestant& none = Named(contestants, "quillon none", "default");
  for (const double nits : {0.5, 20.0, 203.0}) {
    EXPECT_NEAR(ShownGrey(none, nits, 1000.0), nits, 1e-3 * nits);
  }
  EXPECT_NEAR(ShownGrey(none, 1000.0, 1000.0), 203.0, 1e-9);
  const Light red = LightFrom(Gamut::BT709, {100.0, 20.0, 10.0});
  const Light shown = ShownBy(none.map({EncodePQ(red)}, 1000.0).at(0));
  EXPECT_NEAR(shown.red, red.red, 0.01);
  EXPECT_NEAR(shown.green, red.green, 0.01);
  EXPECT_NEAR(shown.blue, red.blue, 0.01);
}

TEST(QuillonContestants, MapTheToldPeakToWhite) {
  const auto contestants = QuillonContestants();
  const Contestant& hue = Named(contestants, "quillon hue", "default");
  EXPECT_NEAR(ShownGrey(hue, 4000.0, 4000.0), 203.0, 0.1);
  EXPECT_LT(ShownGrey(hue, 1000.0, 4000.0), 200.0);
}

TEST(QuillonContestants, HaveTheSettingsOfTheirNames) {
  const auto contestants = QuillonContestants();
  const std::vector<Signal> red = {EncodePQ(LightFrom(Gamut::BT709, {1000.0, 300.0, 100.0}))};
  const auto chroma = [&](const char* settings) {
    const auto mapped = Named(contestants, "quillon hue", settings).map(red, 1000.0);
    return PolarOf(ShownBy(mapped.at(0))).chroma;
  };
  EXPECT_LT(chroma("preserve 0"), chroma("preserve 0.5"));
  EXPECT_LT(chroma("preserve 0.5"), chroma("preserve 0.8"));
  EXPECT_LT(chroma("preserve 0.8"), chroma("preserve 1"));
}

TEST(FfmpegContestants, MapTheToldPeakToWhite) {
  for (const Contestant& contestant : FfmpegContestants()) {
    for (const double peakNits : {600.0, 4000.0}) {
      EXPECT_NEAR(ShownGrey(contestant, peakNits, peakNits), 203.0, 0.2) << contestant.name;
      EXPECT_LT(ShownGrey(contestant, 0.5 * peakNits, peakNits), 201.0) << contestant.name;
    }
  }
}

TEST(FfmpegContestants, ShowWhatLiesBelowTheKneeAsItIs) {
  const auto contestants = FfmpegContestants();
  const Contestant& mobius = Named(contestants, "ffmpeg mobius", "");
  for (const double nits : {0.5, 20.0, 60.0}) {  // the knee is at 0.3 of white
    EXPECT_NEAR(ShownGrey(mobius, nits, 1000.0), nits, 1e-3 * nits);
  }
}

TEST(FilterChain, KeepsPixelsInTheirPlaces) {
  std::vector<Signal> pixels;
  for (int i = 0; i < 1000; ++i) pixels.push_back(EncodePQ({0.1 * i, 50.0, 100.0 - 0.1 * i}));
  const auto mapped = MapByFilters(
      "zscale=t=linear:npl=203,format=gbrpf32le,zscale=p=bt709:t=iec61966-2-1:m=gbr:r=full,"
      "format=gbrpf32le",
      pixels, 1000.0, nullptr);
  ASSERT_EQ(mapped.size(), pixels.size());
  for (int i = 0; i < 1000; ++i) {
    const Light light{0.1 * i, 50.0, 100.0 - 0.1 * i};
    if (!IsInside(Gamut::BT709, light)) continue;
    const Light shown = ShownBy(mapped[static_cast<std::size_t>(i)]);
    EXPECT_NEAR(shown.red, light.red, 0.01) << i;
    EXPECT_NEAR(shown.green, light.green, 0.01) << i;
    EXPECT_NEAR(shown.blue, light.blue, 0.01) << i;
  }
}

TEST(FilterChain, RefusesFiltersThatEndElsewhere) {
  for (const char* filters : {"nosuchfilter", "zscale=t=iec61966-2-1:m=gbr:r=full,format=gbrpf32le",
                              "zscale=p=bt709:t=bt709:m=gbr:r=full,format=gbrpf32le",
                              "zscale=p=bt709:t=iec61966-2-1:m=gbr:r=full,format=gbrp10le"}) {
    EXPECT_THROW(MapByFilters(filters, {Signal{}}, 1000.0, nullptr), std::runtime_error) << filters;
  }
}

TEST(PlaceboContestants, MapTheToldPeakToWhite) {
  std::string remark;
  const auto contestants = PlaceboContestants(remark);
  if (contestants.empty()) GTEST_SKIP() << remark;
  EXPECT_EQ(remark, "");
  for (const Contestant& contestant : contestants) {
    for (const double peakNits : {600.0, 4000.0}) {
      EXPECT_NEAR(ShownGrey(contestant, peakNits, peakNits), 203.0, 1.0) << contestant.name;
      EXPECT_LT(ShownGrey(contestant, 0.5 * peakNits, peakNits), 201.0) << contestant.name;
    }
  }
}

}  // namespace
