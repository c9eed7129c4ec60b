#pragma once

#include <functional>
#include <string>

#include "tools/quillon/io/Still.h"
#include "tools/quillon/map/MapOptions.h"

/// Peak luminance of a source and how it was come by.
struct SourcePeak {
  double nits = 0.0;
  std::string origin;
};

/// Measures the peak of what is to be mapped, in nits.
using PeakMeasurement = std::function<double()>;

/// The peak to map from: what the options say; without that the file's metadata (MaxCLL, else the
/// mastering display's peak), else measured for scene-linear pictures, else the transfer's nominal
/// peak. Throws CommandError, and what the measurement throws.
SourcePeak ChooseSourcePeak(const MapOptions& options,
                            const orvmediatypes::color::ColorDescription& tagged,
                            const ContentLight& light, const PeakMeasurement& measurePeak);
