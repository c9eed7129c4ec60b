#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/pavix/GamutMappingUtils.h"
#include "host/pavix/IVideoFrame.h"
#include "tools/quillon/SourcePeak.h"
#include "tools/quillon/io/Still.h"
#include "tools/quillon/map/MapOptions.h"

/// What will be done to a picture, or to the pictures of a clip: everything that was asked for or
/// found out, resolved.
struct MapPlan {
  /// As tagged by the file or given by the user.
  orvmediatypes::color::ColorDescription taggedSource;
  /// The still as the engine gets it: float BGRA in the settings' source colour space. Empty for
  /// clips.
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

/// The colour space of a picture whose file says `file`, as the options override it. Throws
/// CommandError where neither tells it.
orvmediatypes::color::ColorDescription TaggedColors(
    const MapOptions& options, const orvmediatypes::color::ColorDescription& file);

/// Resolves the options for a picture. Throws CommandError.
MapPlan PlanMap(const MapOptions& options, const Still& still);

/// Whether the peak of pictures that are tagged so has to be measured.
bool NeedsMeasuring(const MapOptions& options, const orvmediatypes::color::ColorDescription& colors,
                    const ContentLight& light);

/// Resolves the options for a clip whose pictures are tagged `colors` and `light`; `measurePeak`
/// is called where `NeedsMeasuring`. Throws CommandError.
MapPlan PlanClip(const MapOptions& options, const orvmediatypes::color::ColorDescription& colors,
                 const ContentLight& light, const PeakMeasurement& measurePeak);

/// The plan for a picture with another peak. Throws CommandError.
MapPlan WithPeak(const MapPlan& plan, double nits);
