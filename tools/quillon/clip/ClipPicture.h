#pragma once

#include <cstdint>
#include <memory>

#include "host/pavix/IVideoFrame.h"
#include "tools/quillon/video/ClipTags.h"

namespace Quillon::Cli {

/// A picture of a clip or of an image sequence.
struct ClipPicture {
  /// In system memory, in the colour space that `tags` tell.
  PX::VideoFrameRef frame;
  ClipTags tags;
  std::int64_t number = 0;  ///< from 0, as shown
  std::int64_t pts = 0;     ///< in the time base of its source
  /// The decoded frame with what else came along; null for stills.
  std::shared_ptr<const AVFrame> samples;
};

}  // namespace Quillon::Cli
