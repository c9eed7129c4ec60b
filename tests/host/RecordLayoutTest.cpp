#include <cstddef>

#include <gtest/gtest.h>

#include "host/orvcore/Geom.h"
#include "host/orvcore/InterfaceRef.h"
#include "host/orvmediatypes/PixelFormat.h"
#include "host/pavix/GamutMappingUtils.h"

namespace {

using orvcore::geom::Bounds;
using orvmediatypes::PixelFormat;
using orvmediatypes::color::ToneMapControls;
using PX::GamutMappingUtils::GamutCompressionSettings;
using PX::GamutMappingUtils::GamutMappingSettings;
using PX::ToneMappingUtils::ToneMapSettings;

template <class Field>
std::ptrdiff_t OffsetIn(const GamutMappingSettings& record, const Field& field) {
  return reinterpret_cast<const std::byte*>(&field) - reinterpret_cast<const std::byte*>(&record);
}

TEST(RecordLayout, TheGamutAlgorithmLeadsTheRecordAndTheToneMapFollows) {
  const GamutMappingSettings record;
  EXPECT_EQ(OffsetIn(record, record.GamutCompressionSettings::algorithmType), 0);
  EXPECT_GT(OffsetIn(record, record.toneMapSettings), 0);
  EXPECT_EQ(OffsetIn(record, static_cast<const GamutCompressionSettings&>(record)), 0);
}

TEST(RecordLayout, TheToneMapFieldsStandInOrder) {
  EXPECT_EQ(offsetof(ToneMapSettings, reserved), 0U);
  EXPECT_EQ(sizeof(ToneMapSettings::reserved), 1U);
  EXPECT_LT(offsetof(ToneMapSettings, reserved), offsetof(ToneMapSettings, sourceColorSpace));
  EXPECT_LT(offsetof(ToneMapSettings, sourceColorSpace),
            offsetof(ToneMapSettings, destinationColorSpace));
  EXPECT_LT(offsetof(ToneMapSettings, destinationColorSpace),
            offsetof(ToneMapSettings, colorManagementSettings));
  EXPECT_LT(offsetof(ToneMapSettings, colorManagementSettings),
            offsetof(ToneMapSettings, controls));
  EXPECT_EQ(offsetof(ToneMapSettings, knee), offsetof(ToneMapSettings, controls) + 16);
  EXPECT_EQ(offsetof(ToneMapSettings, algorithmType), offsetof(ToneMapSettings, knee) + 4);
}

TEST(RecordLayout, TheControlsAreFour32BitMembers) {
  EXPECT_EQ(offsetof(ToneMapControls, version), 0U);
  EXPECT_EQ(offsetof(ToneMapControls, peak), 4U);
  EXPECT_EQ(offsetof(ToneMapControls, peakGain), 8U);
  EXPECT_EQ(offsetof(ToneMapControls, colorPreservation), 12U);
  EXPECT_EQ(sizeof(ToneMapControls), 16U);
}

TEST(RecordLayout, BoundsAreFour32BitValuesWithWidthThirdAndHeightFourth) {
  EXPECT_EQ(sizeof(Bounds), 16U);
  EXPECT_EQ(offsetof(Bounds, width), 8U);
  EXPECT_EQ(offsetof(Bounds, height), 12U);
}

TEST(RecordLayout, BoundsAreEqualOnlyWhenAllFourValuesAre) {
  const Bounds bounds{1, 2, 3, 4};
  EXPECT_EQ(bounds, (Bounds{1, 2, 3, 4}));
  EXPECT_NE(bounds, (Bounds{0, 2, 3, 4}));
  EXPECT_NE(bounds, (Bounds{1, 0, 3, 4}));
  EXPECT_NE(bounds, (Bounds{1, 2, 0, 4}));
  EXPECT_NE(bounds, (Bounds{1, 2, 3, 0}));
}

TEST(RecordLayout, APixelFormatIsTheCodeAndThenTheDescriptor) {
  EXPECT_EQ(sizeof(PixelFormat), 8U);
  EXPECT_EQ(offsetof(PixelFormat, fourCC), 0U);
  EXPECT_EQ(offsetof(PixelFormat, descriptor), 4U);
  EXPECT_EQ(orvmediatypes::kLinearFloatBGRA.fourCC, 0x61724742U);
  EXPECT_EQ(orvmediatypes::kLinearFloatBGRA.descriptor, 0x0008013AU);
  EXPECT_NE(orvmediatypes::kLinearFloatBGRA, (PixelFormat{0x61724742U, 0x00080138U}));
  EXPECT_NE(orvmediatypes::kLinearFloatBGRA, (PixelFormat{0x61724743U, 0x0008013AU}));
}

TEST(RecordLayout, AHandleIsThreePointers) {
  EXPECT_EQ(sizeof(orvcore::classref::InterfaceRef<int>), 3 * sizeof(void*));
}

}  // namespace
