#pragma once

#include <memory>
#include <stdexcept>
#include <string>

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/frame.h>
}

/// Owners of FFmpeg's filter graphs, for those who compare themselves with its filters.

struct FreeFrame {
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
using FramePtr = std::unique_ptr<AVFrame, FreeFrame>;

struct FreeGraph {
  void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
};
using GraphPtr = std::unique_ptr<AVFilterGraph, FreeGraph>;

/// Throws std::runtime_error for results below 0.
inline void CheckAv(int result, const char* operation) {
  if (result < 0) throw std::runtime_error(std::string("FFmpeg: ") + operation + " failed");
}

/// A new filter of the graph, which owns it. Throws std::runtime_error.
inline AVFilterContext* AddFilter(AVFilterGraph* graph, const char* filter,
                                  const std::string& options) {
  AVFilterContext* context = nullptr;
  CheckAv(avfilter_graph_create_filter(&context, avfilter_get_by_name(filter), nullptr,
                                       options.c_str(), nullptr, graph),
          filter);
  return context;
}
