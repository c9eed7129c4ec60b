#pragma once

#include "host/pavix/GamutMappingUtils.h"
#include "mapper/GamutFit.h"
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
  /// Null: nothing is fitted.
  std::shared_ptr<const GamutFit> fit;
  /// What the engine writes: linear light in the destination's primaries where more is to be done
  /// before it is encoded, else the destination's colours.
  orvmediatypes::color::ColorSpace result;
  bool toneMapApplies = false;
  bool gamutApplies = false;

  /// Whether the engine leaves linear light, to be encoded after it.
  bool WritesLight() const { return !(result.Description() == DestinationSpace().Description()); }
  const orvmediatypes::color::ColorSpace& SourceSpace() const {
    return settings.toneMapSettings.sourceColorSpace;
  }
  const orvmediatypes::color::ColorSpace& DestinationSpace() const {
    return settings.toneMapSettings.destinationColorSpace;
  }
};

}  // namespace Quillon::Mapper
