#pragma once

#include "tests/host/HostTest.h"

namespace pipeline {

/// A 2 by 2 frame pair on which the software pipeline runs: HLG into SDR.
struct Frames {
  PX::VideoFrameRef source;
  PX::VideoFrameRef destination;
};

inline constexpr orvmediatypes::PixelFormat kOtherFormat{0x32767579U, 0x00000002U};

/// Frames of the given formats.
inline Frames MakeFrames(orvmediatypes::PixelFormat source,
                         orvmediatypes::PixelFormat destination) {
  return {scripted::MakeFrame({.name = "source", .format = source, .colors = scripted::kHLG}),
          scripted::MakeFrame(
              {.name = "destination", .format = destination, .colors = scripted::kSDR})};
}

/// Both linear float BGRA: the destination is the working frame.
inline Frames MakeDirectFrames() {
  return MakeFrames(orvmediatypes::kLinearFloatBGRA, orvmediatypes::kLinearFloatBGRA);
}

/// Another format on both sides: a working frame is made.
inline Frames MakeCopiedFrames() { return MakeFrames(kOtherFormat, kOtherFormat); }

}  // namespace pipeline
