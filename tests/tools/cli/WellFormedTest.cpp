#include <gtest/gtest.h>

#include "tests/tools/cli/WellFormed.h"

namespace {

TEST(WellFormed, AcceptsElementsAttributesAndReferences) {
  EXPECT_EQ(WhyNotWellFormed("<?xml version=\"1.0\"?>\n<a b='1 > 0' c=\"\"><d/>x &lt; &#65;</a>\n"),
            "");
}

TEST(WellFormed, RefusesWhatIsNotXml) {
  for (const char* text : {"", "<a>", "<a></b>", "<a/><b/>", "<a b=1/>", "<a b='1'c='2'/>",
                           "<a b='&'/>", "<a b='<'/>", "<a>R&D</a>", "<a", "<a b='1/>", "<></>"}) {
    EXPECT_NE(WhyNotWellFormed(text), "") << text;
  }
}

}  // namespace
