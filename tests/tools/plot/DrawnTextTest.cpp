#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/quillon/plot/DrawScene.h"
#include "tools/quillon/plot/DrawnText.h"

using namespace Quillon::Cli;

namespace {

const std::string kMark = "\xEF\xBF\xBD";

}  // namespace

TEST(DrawnText, KeepsWhatIsUtf8) {
  const std::string text = "a \xC3\xA4 \xE2\x82\xAC \xF0\x9F\x8C\x85 \xEF\xBF\xBD";
  EXPECT_EQ(DrawnText(text), text);
  EXPECT_EQ(DrawnText(""), "");
}

TEST(DrawnText, ReplacesWhatIsNot) {
  EXPECT_EQ(DrawnText("a\xFFz"), "a" + kMark + "z");
  EXPECT_EQ(DrawnText("a\xC3"), "a" + kMark) << "cut off";
  EXPECT_EQ(DrawnText("\xC3z"), kMark + "z");
  EXPECT_EQ(DrawnText("\xC0\x80"), kMark + kMark) << "overlong";
  EXPECT_EQ(DrawnText("\xE0\x80\x80"), kMark + kMark + kMark) << "overlong";
  EXPECT_EQ(DrawnText("\xED\xA0\x80"), kMark + kMark + kMark) << "half of a pair of UTF-16";
  EXPECT_EQ(DrawnText("\xF4\x90\x80\x80"), kMark + kMark + kMark + kMark) << "past the last";
  EXPECT_EQ(DrawnText("\xF0\x80\x80\x80"), kMark + kMark + kMark + kMark) << "overlong";
}

TEST(DrawnText, ReplacesWhatXmlDoesNotTake) {
  EXPECT_EQ(DrawnText("a\x01\n\x7Fz"), "a" + kMark + kMark + kMark + "z");
  EXPECT_EQ(DrawnText("\xEF\xBF\xBF"), kMark);
}

TEST(DrawScene, DrawsNamesThatAreNotUtf8) {
  Scene scene;
  scene.width = 40;
  scene.height = 20;
  scene.title = "clip\xFF";
  scene.texts.push_back({.text = "clip\xFF", .at = {2.0, 12.0}});
  EXPECT_THAT(DrawSvg(scene), testing::HasSubstr("<title>clip" + kMark + "</title>"));
  EXPECT_THAT(DrawSvg(scene), testing::Not(testing::HasSubstr("\xFF")));
  EXPECT_NO_THROW(DrawBitmap(scene));
}
