#pragma once

#include <string>

#include "bench/FilterGraph.h"
#include "host/pavix/IVideoFrame.h"

/// FFmpeg's filters for the same task. Frames stay in memory on both sides.
class FfmpegVideo {
 public:
  /// `toneMap`: hable, mobius, ... The codes are those of a frame by MakeHdr10Frame.
  FfmpegVideo(const std::string& toneMap, int threads, const PX::VideoFrameRef& source);

  void MapFrame();

 private:
  GraphPtr graph_;
  FramePtr source_;
  AVFilterContext* in_ = nullptr;
  AVFilterContext* out_ = nullptr;
};
