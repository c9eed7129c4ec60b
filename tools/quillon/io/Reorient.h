#pragma once

#include "host/pavix/IVideoFrame.h"
#include "tools/quillon/io/StillSource.h"

namespace Quillon::Cli {

enum class Mirror { None, LeftRight, TopBottom };

/// How a stored picture is to be shown: turned anticlockwise, then mirrored.
struct Orientation {
  int quarterTurns = 0;  ///< 0 to 3, anticlockwise
  Mirror mirror = Mirror::None;
  friend bool operator==(const Orientation&, const Orientation&) = default;
};

/// The float BGRA frame as it is to be shown, as a new frame. Throws StillError.
PX::VideoFrameRef Reorient(const StillSource& source, const PX::VideoFrameRef& frame,
                           const Orientation& orientation);

}  // namespace Quillon::Cli
