#pragma once

#include "base/SupportVector.h"
#include "tests/host/HostTest.h"

namespace tonemap {

/// A test of support parameters: a settings record and a vector that a builder has to empty.
class ToneMapTest : public scripted::HostTest {
 protected:
  void SetSource(const scripted::ColorDescription& colors) {
    settings.sourceColorSpace = orvmediatypes::color::ColorSpace(colors);
  }
  void SetDestination(const scripted::ColorDescription& colors) {
    settings.destinationColorSpace = orvmediatypes::color::ColorSpace(colors);
  }
  void SetAlgorithm(int algorithm) {
    settings.algorithmType = static_cast<orvmediatypes::color::ToneMapAlgorithmType>(algorithm);
  }

  void SetUp() override {
    HostTest::SetUp();
    params = {9.0F, 9.0F};
  }
  void TearDown() override {
    params = Quillon::SupportVector();
    HostTest::TearDown();
  }

  PX::ToneMappingUtils::ToneMapSettings settings = scripted::MakeRecord(5).toneMapSettings;
  Quillon::SupportVector params;
};

/// PQ code value of 1000 nits.
inline constexpr float kPQ1000 = 0.751827F;

}  // namespace tonemap
