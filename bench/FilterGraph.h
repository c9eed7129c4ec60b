#pragma once

#include <memory>
#include <new>
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

/// Adds the filters of a description, "zscale=t=linear,tonemap=hable", between a source and a sink
/// of the graph, which is not configured. Throws std::runtime_error.
inline void AddFilters(AVFilterGraph* graph, const std::string& filters, AVFilterContext* source,
                       AVFilterContext* sink) {
  const auto endAt = [](AVFilterContext* filter, const char* name) {
    AVFilterInOut* end = avfilter_inout_alloc();
    if (end == nullptr) throw std::bad_alloc();
    end->name = av_strdup(name);
    end->filter_ctx = filter;
    end->pad_idx = 0;
    end->next = nullptr;
    return end;
  };
  AVFilterInOut* outputs = endAt(source, "in");
  AVFilterInOut* inputs = endAt(sink, "out");
  const int result = avfilter_graph_parse_ptr(graph, filters.c_str(), &inputs, &outputs, nullptr);
  avfilter_inout_free(&inputs);
  avfilter_inout_free(&outputs);
  CheckAv(result, filters.c_str());
}
