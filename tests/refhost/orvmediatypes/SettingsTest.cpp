#include <utility>

#include <gtest/gtest.h>

#include "host/orvmediatypes/ColorManagementSettings.h"
#include "host/orvmediatypes/ToneMapControls.h"

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::GraphicsWhiteLuminance;
using orvmediatypes::color::ToneMapControls;

TEST(ColorManagementSettings, ShowGraphicsWhiteAt203NitsByDefault) {
  EXPECT_EQ(ColorManagementSettings().GetGraphicsWhiteLuminance(), GraphicsWhiteLuminance::Nits203);
}

TEST(ColorManagementSettings, KeepAnyWholeNumberOfNitsThroughCopiesAndMoves) {
  const auto white = static_cast<GraphicsWhiteLuminance>(157U);
  const ColorManagementSettings original(white);
  ColorManagementSettings copy(original);
  ColorManagementSettings assigned;
  assigned = copy;
  const ColorManagementSettings moved(std::move(copy));
  EXPECT_EQ(assigned.GetGraphicsWhiteLuminance(), white);
  EXPECT_EQ(moved.GetGraphicsWhiteLuminance(), white);
}

TEST(ToneMapControls, TellTheirVersion) {
  EXPECT_EQ(ToneMapControls().GetVersion(), 3);
  EXPECT_EQ(ToneMapControls{-5}.GetVersion(), -5);
}
