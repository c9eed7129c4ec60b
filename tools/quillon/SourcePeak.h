#pragma once

#include <string>

#include "host/PX/IVideoFrame.h"
#include "tools/quillon/MapOptions.h"
#include "tools/quillon/io/Still.h"

/// Peak luminance of a source and how it was come by.
struct SourcePeak {
  double nits = 0.0;
  std::string origin;
};

/// The peak to map from: what the options say; without that the file's metadata (MaxCLL, else the
/// mastering display's peak), else measured for scene-linear pictures, else the transfer's nominal
/// peak. `frame` is the picture to measure. Throws CommandError.
SourcePeak ChooseSourcePeak(const MapOptions& options, const Still& still,
                            const orvmediatypes::color::ColorDescription& tagged,
                            const PX::VideoFrameRef& frame);
