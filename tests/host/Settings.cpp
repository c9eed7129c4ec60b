#include "tests/host/Settings.h"

#include <cstring>

#include <gtest/gtest.h>

#include "tests/host/Describe.h"
#include "tests/host/Host.h"

namespace scripted {

using orvmediatypes::color::ColorManagementSettings;
using orvmediatypes::color::ColorSpace;
using orvmediatypes::color::GamutCompressionAlgorithmType;
using orvmediatypes::color::GraphicsWhiteLuminance;
using orvmediatypes::color::ToneMapAlgorithmType;
using PX::GamutMappingUtils::GamutMappingSettings;

GamutMappingSettings MakeRecord(int toneMapAlgorithm, int gamutAlgorithm) {
  GamutMappingSettings record;
  record.GamutCompressionSettings::algorithmType =
      static_cast<GamutCompressionAlgorithmType>(gamutAlgorithm);
  PX::ToneMappingUtils::ToneMapSettings& toneMap = record.toneMapSettings;
  toneMap.reserved = true;
  toneMap.sourceColorSpace = ColorSpace(kHLG);
  toneMap.destinationColorSpace = ColorSpace(kSDR);
  toneMap.colorManagementSettings = ColorManagementSettings(GraphicsWhiteLuminance::Nits100);
  toneMap.controls = {.version = 3, .peak = 0.75F, .peakGain = 2.0F, .colorPreservation = 0.25F};
  toneMap.knee = 0.5F;
  toneMap.algorithmType = static_cast<ToneMapAlgorithmType>(toneMapAlgorithm);
  return record;
}

RecordWatch::RecordWatch(const Settings& record)
    : record_(record), copy_(record), bytes_(BytesOf(record)) {
  Host::Instance().record = &record;
}

RecordWatch::~RecordWatch() {
  const PX::ToneMappingUtils::ToneMapSettings& now = record_.toneMapSettings;
  const PX::ToneMappingUtils::ToneMapSettings& then = copy_.toneMapSettings;
  EXPECT_EQ(record_.GamutCompressionSettings::algorithmType,
            copy_.GamutCompressionSettings::algorithmType);
  EXPECT_EQ(now.reserved, then.reserved);
  EXPECT_EQ(now.sourceColorSpace.Description(), then.sourceColorSpace.Description());
  EXPECT_EQ(now.destinationColorSpace.Description(), then.destinationColorSpace.Description());
  EXPECT_EQ(GraphicsWhite(now.colorManagementSettings),
            GraphicsWhite(then.colorManagementSettings));
  EXPECT_EQ(now.controls.version, then.controls.version);
  EXPECT_EQ(now.controls.peak, then.controls.peak);
  EXPECT_EQ(now.controls.peakGain, then.controls.peakGain);
  EXPECT_EQ(now.controls.colorPreservation, then.controls.colorPreservation);
  EXPECT_EQ(now.knee, then.knee);
  EXPECT_EQ(now.algorithmType, then.algorithmType);
  EXPECT_EQ(BytesOf(record_), bytes_) << "the caller's record was written";
}

RecordWatch::Bytes RecordWatch::BytesOf(const Settings& record) {
  Bytes bytes;
  std::memcpy(bytes.data(), &record, sizeof(record));
  return bytes;
}

}  // namespace scripted
