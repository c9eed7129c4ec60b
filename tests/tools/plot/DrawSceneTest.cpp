#include <algorithm>
#include <cstdint>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/quillon/plot/DrawScene.h"

using namespace Quillon::Cli;

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

std::vector<int> PixelAt(const Bitmap& bitmap, int x, int y) {
  const std::uint8_t* pixel = bitmap.bgra.data() + 4 * (y * bitmap.width + x);
  return {pixel[2], pixel[1], pixel[0], pixel[3]};
}

TEST(DrawScene, PaintsOnOpaqueWhite) {
  Scene scene;
  scene.width = 7;
  scene.height = 3;
  const Bitmap bitmap = DrawBitmap(scene);
  EXPECT_EQ(bitmap.width, 7);
  EXPECT_EQ(bitmap.height, 3);
  EXPECT_EQ(bitmap.bgra, std::vector<std::uint8_t>(std::size_t{4} * 7 * 3, 255));
}

TEST(DrawScene, CopiesPicturesSampleBySample) {
  Scene scene;
  scene.width = 8;
  scene.height = 8;
  scene.pictures.push_back({{2.0, 2.0, 4.0, 2.0}, 2, 1, {{255, 10, 20}, {30, 40, 255}}});
  const Bitmap bitmap = DrawBitmap(scene);
  EXPECT_THAT(PixelAt(bitmap, 1, 2), ElementsAre(255, 255, 255, 255));
  for (const int y : {2, 3}) {
    for (const int x : {2, 3}) EXPECT_THAT(PixelAt(bitmap, x, y), ElementsAre(255, 10, 20, 255));
    for (const int x : {4, 5}) EXPECT_THAT(PixelAt(bitmap, x, y), ElementsAre(30, 40, 255, 255));
  }
  EXPECT_THAT(PixelAt(bitmap, 2, 4), ElementsAre(255, 255, 255, 255));
}

TEST(DrawScene, KeepsLinesWithinTheirClip) {
  Scene scene;
  scene.width = 9;
  scene.height = 3;
  scene.lines.push_back(
      {{{0.0, 1.5}, {9.0, 1.5}}, {0.0, 0.0, 1.0}, 1.0, {}, Box{3.0, 0.0, 3.0, 3.0}});
  const Bitmap bitmap = DrawBitmap(scene);
  for (int x = 0; x < 9; ++x) {
    const int other = x >= 3 && x < 6 ? 0 : 255;
    EXPECT_THAT(PixelAt(bitmap, x, 1), ElementsAre(other, other, 255, 255)) << x;
  }
}

TEST(DrawScene, DrawsTextsWhereTheyAreAnchored) {
  const auto inked = [](Anchor anchor, bool upright) {
    Scene scene;
    scene.width = 100;
    scene.height = 100;
    scene.texts.push_back(
        {.text = "HHH", .at = {50.0, 50.0}, .size = 12.0, .anchor = anchor, .upright = upright});
    const Bitmap bitmap = DrawBitmap(scene);
    int left = 100;
    int right = -1;
    int top = 100;
    for (int y = 0; y < 100; ++y) {
      for (int x = 0; x < 100; ++x) {
        if (PixelAt(bitmap, x, y)[1] > 128) continue;
        left = std::min(left, x);
        right = std::max(right, x);
        top = std::min(top, y);
      }
    }
    return std::vector<int>{left, right, top};
  };
  const auto start = inked(Anchor::Start, false);
  EXPECT_GE(start[0], 50);
  EXPECT_GT(start[1], start[0] + 15);
  EXPECT_LT(inked(Anchor::End, false)[1], 50);
  EXPECT_LT(inked(Anchor::Middle, false)[0], 45);
  EXPECT_GT(inked(Anchor::Middle, false)[1], 55);
  EXPECT_LT(inked(Anchor::Start, true)[2], 35);
  EXPECT_LE(inked(Anchor::Start, true)[1], 50);
}

TEST(DrawScene, DescribesAnSvgByItsTexts) {
  Scene scene;
  scene.width = 10;
  scene.height = 20;
  scene.title = "R & D";
  scene.texts.push_back({.text = "a < b", .at = {1.0, 9.0}});
  const std::string svg = DrawSvg(scene);
  EXPECT_THAT(svg, HasSubstr("width=\"10px\" height=\"20px\""));
  EXPECT_THAT(svg, HasSubstr("<title>R &amp; D</title>"));
  EXPECT_THAT(svg, HasSubstr("<desc>a &lt; b\n</desc>"));
}

}  // namespace
