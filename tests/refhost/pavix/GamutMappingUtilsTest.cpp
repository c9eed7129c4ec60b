#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/pavix/GamutMappingUtils.h"

using orvmediatypes::color::GamutCompressionAlgorithmType;
using PX::GamutMappingUtils::GetGamutCompressionMethodName;

TEST(GetGamutCompressionMethodName, TellsTheMethodsApart) {
  std::set<std::string> names;
  for (int type = 0; type <= 2; ++type) {
    names.insert(
        GetGamutCompressionMethodName(static_cast<GamutCompressionAlgorithmType>(type), 1));
  }
  EXPECT_EQ(names, (std::set<std::string>{"None", "Reinhard", "Desaturation"}));
}

TEST(GetGamutCompressionMethodName, SaysTheNumberOfAnUnknownMethod) {
  EXPECT_EQ(GetGamutCompressionMethodName(static_cast<GamutCompressionAlgorithmType>(7), 1),
            "Unknown gamut-compression method 7");
  EXPECT_THAT(GetGamutCompressionMethodName(static_cast<GamutCompressionAlgorithmType>(-3), 1),
              testing::HasSubstr("-3"));
}
