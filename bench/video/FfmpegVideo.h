#pragma once

#include <memory>
#include <string>

#include "host/PX/IVideoFrame.h"

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavutil/frame.h>
}

/// FFmpeg's filters for the same task. Frames stay in memory on both sides.
class FfmpegVideo {
 public:
  /// `toneMap`: hable, mobius, ... The codes are those of a frame by MakeHdr10Frame.
  FfmpegVideo(const std::string& toneMap, int threads, const PX::VideoFrameRef& source);

  void MapFrame();

 private:
  struct FreeGraph {
    void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
  };
  struct FreeFrame {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
  };

  std::unique_ptr<AVFilterGraph, FreeGraph> graph_;
  std::unique_ptr<AVFrame, FreeFrame> source_;
  AVFilterContext* in_ = nullptr;
  AVFilterContext* out_ = nullptr;
};
