#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/PX/GamutMappingUtils.h"
#include "host/PX/IVideoFrame.h"
#include "tools/quillon/MapOptions.h"
#include "tools/quillon/io/Still.h"

/// What will be done to one picture: everything that was asked for or found out, resolved.
struct MapPlan {
  /// As tagged by the file or given by the user.
  orvmediatypes::color::ColorDescription taggedSource;
  /// The picture as the engine gets it: float BGRA in the settings' source colour space.
  PX::VideoFrameRef source;
  PX::GamutMappingUtils::GamutMappingSettings settings;
  /// Where it is mapped; null: on the processor.
  std::shared_ptr<IL::GpuDevice> device;
  double sourcePeakNits = 0.0;
  std::string peakOrigin;  ///< "measured", "MaxCLL of the file", ...
  double destinationPeakNits = 0.0;
  int white = 0;
  bool toneMapApplies = false;
  bool gamutApplies = false;
};

/// Resolves the options for a picture. Throws CommandError.
MapPlan PlanMap(const MapOptions& options, const Still& still);
