#include <gmock/gmock.h>

#include "tests/tools/RunQuillon.h"
#include "tests/tools/ScratchFolder.h"
#include "tools/quillon/clip/FrameSelection.h"
#include "tools/quillon/clip/SequenceName.h"

using namespace Quillon::Cli;

namespace {

using testing::ElementsAre;

TEST(SequenceName, IsAFileNameWithOnePlaceForTheNumber) {
  for (const std::string name :
       {"f.png", "f%5d.png", "f%.png", "%d%d.png", "f%0d.png", "f%00d.png"}) {
    EXPECT_FALSE(SequenceName::Parse(name).has_value()) << name;
  }
  EXPECT_EQ(SequenceName::Parse("a/f.%05d.exr")->FileOf(42), "a/f.00042.exr");
  EXPECT_EQ(SequenceName::Parse("%d.exr")->FileOf(42), "42.exr");
  EXPECT_EQ(SequenceName::Parse("f%02d")->FileOf(1234), "f1234");
}

TEST(SequenceName, FindsTheFilesThatAreThere) {
  const ScratchFolder folder;
  for (const std::string name :
       {"f.3.png", "f.12.png", "f.03.png", "f.x.png", "f..png", "g.1.png"}) {
    WriteFile(folder / name, "x");
  }
  EXPECT_THAT(SequenceName::Parse(folder / "f.%d.png")->ExistingNumbers(), ElementsAre(3, 12));
  EXPECT_THAT(SequenceName::Parse(folder / "f.%02d.png")->ExistingNumbers(), ElementsAre(3, 12));
  EXPECT_THAT(SequenceName::Parse(folder / "none/%d.png")->ExistingNumbers(), ElementsAre());
}

TEST(FrameRanges, AreSortedAndJoined) {
  EXPECT_THAT(*ParseFrameRanges("200,10-99"),
              ElementsAre(FrameRange{10, 99}, FrameRange{200, 200}));
  EXPECT_THAT(*ParseFrameRanges("5-9,10,1-6"), ElementsAre(FrameRange{1, 10}));
  EXPECT_FALSE(ParseFrameRanges("").has_value());
  EXPECT_FALSE(ParseFrameRanges("9-5").has_value());
  EXPECT_FALSE(ParseFrameRanges("99999999999").has_value());
}

TEST(Chunks, HoldEachFrameOnce) {
  for (const std::int64_t frames : {1, 7, 48, 1000}) {
    for (const std::int64_t parts : {1, 3, 8}) {
      std::int64_t next = 0;
      for (std::int64_t part = 1; part <= parts; ++part) {
        const auto range = RangeOf({part, parts}, frames);
        if (!range) continue;
        EXPECT_EQ(range->first, next);
        next = range->last + 1;
      }
      EXPECT_EQ(next, frames);
    }
  }
}

TEST(FrameSelection, LosesWhatIsDone) {
  const FrameSelection selection({{2, 4}, {8, 9}});
  EXPECT_EQ(selection.CountOf(100), 5);
  EXPECT_EQ(selection.CountOf(9), 4);
  EXPECT_THAT(selection.Without(0, 100).Ranges(), ElementsAre(FrameRange{2, 4}, FrameRange{8, 9}));
  EXPECT_THAT(selection.Without(2, 100).Ranges(), ElementsAre(FrameRange{4, 4}, FrameRange{8, 9}));
  EXPECT_THAT(selection.Without(4, 100).Ranges(), ElementsAre(FrameRange{9, 9}));
  EXPECT_THAT(FrameSelection().Without(3, 10).Ranges(), ElementsAre(FrameRange{3, 9}));
}

}  // namespace
