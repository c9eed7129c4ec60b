#pragma once

#include "host/pavix/GamutMappingUtils.h"
#include "mapper/Plan.h"

namespace Quillon::Mapper {

struct Plan::Content {
  Source source;
  Settings asked;
  std::shared_ptr<Device> device;  ///< null: on the processor
  SourcePeak peak;
  double curvePeakNits = 0.0;
  double destinationPeakNits = 0.0;
  /// What the engine is given.
  PX::GamutMappingUtils::GamutMappingSettings settings;
  bool toneMapApplies = false;
  bool gamutApplies = false;

  const orvmediatypes::color::ColorSpace& SourceSpace() const {
    return settings.toneMapSettings.sourceColorSpace;
  }
  const orvmediatypes::color::ColorSpace& DestinationSpace() const {
    return settings.toneMapSettings.destinationColorSpace;
  }
};

}  // namespace Quillon::Mapper
