// FFmpeg's tonemap filter alone, for comparison: a planar float RGB frame of the same size and
// light goes from a buffer source through the filter into a buffer sink, on one thread, without
// desaturation. Only these two calls are timed; the filter writes into a frame of its own pool.

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "bench/CurveCases.h"
#include "bench/FilterGraph.h"
#include "bench/Frames.h"
#include "bench/Timing.h"

namespace {

/// Source, tonemap and sink.
class TonemapGraph {
 public:
  explicit TonemapGraph(const std::string& operatorName) : graph_(avfilter_graph_alloc()) {
    graph_->nb_threads = 1;
    source_ = AddFilter(graph_.get(), "buffer",
                        "video_size=" + std::to_string(kWidth) + "x" + std::to_string(kHeight) +
                            ":pix_fmt=gbrpf32le:time_base=1/1:pixel_aspect=1/1");
    AVFilterContext* tonemap =
        AddFilter(graph_.get(), "tonemap", "tonemap=" + operatorName + ":desat=0:peak=5");
    sink_ = AddFilter(graph_.get(), "buffersink", "");
    CheckAv(avfilter_link(source_, 0, tonemap, 0), "link");
    CheckAv(avfilter_link(tonemap, 0, sink_, 0), "link");
    CheckAv(avfilter_graph_config(graph_.get(), nullptr), "configuration");
  }

  void Map(AVFrame* in, AVFrame* out) {
    CheckAv(av_buffersrc_add_frame_flags(source_, in, AV_BUFFERSRC_FLAG_KEEP_REF), "source");
    CheckAv(av_buffersink_get_frame(sink_, out), "sink");
  }

 private:
  GraphPtr graph_;
  AVFilterContext* source_ = nullptr;
  AVFilterContext* sink_ = nullptr;
};

FramePtr MakePlanarFrame(const std::vector<float>& picture) {
  FramePtr frame(av_frame_alloc());
  frame->format = AV_PIX_FMT_GBRPF32LE;
  frame->width = kWidth;
  frame->height = kHeight;
  frame->color_trc = AVCOL_TRC_LINEAR;
  frame->colorspace = AVCOL_SPC_BT2020_NCL;
  AllocatePlanes(frame.get());
  constexpr std::size_t kPlaneToChannel[] = {1, 0, 2};  // green, blue, red of BGRA
  for (int plane = 0; plane < 3; ++plane) {
    for (int y = 0; y < kHeight; ++y) {
      auto* row =
          reinterpret_cast<float*>(frame->data[plane] + std::ptrdiff_t{y} * frame->linesize[plane]);
      const float* pixel = &picture[static_cast<std::size_t>(y) * kWidth * 4];
      for (int x = 0; x < kWidth; ++x) {
        row[x] = pixel[static_cast<std::size_t>(x) * 4 + kPlaneToChannel[plane]];
      }
    }
  }
  return frame;
}

void FfmpegTonemap(benchmark::State& state, const std::string& operatorName) {
  const std::vector<float> picture = MakePicture(Picture::Hdr);
  const FramePtr in = MakePlanarFrame(picture);
  std::vector<float> pixels = picture;
  TonemapGraph graph(operatorName);
  std::vector<double> calls;
  std::vector<double> floors;
  while (state.KeepRunning()) {
    const FramePtr out(av_frame_alloc());
    calls.push_back(SecondsOf([&] { graph.Map(in.get(), out.get()); }));
    std::copy(picture.begin(), picture.end(), pixels.begin());
    floors.push_back(SecondsOf([&] { ReadAndWrite(pixels); }));
    state.SetIterationTime(calls.back());
  }
  ReportRatios(state, calls, floors);
}

[[maybe_unused]] const int kRegistered = [] {
  for (const char* name : {"hable", "mobius", "reinhard"}) {
    benchmark::RegisterBenchmark((std::string("ffmpeg-tonemap/") + name).c_str(),
                                 [name](benchmark::State& state) { FfmpegTonemap(state, name); })
        ->Iterations(9)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
  }
  return 0;
}();

}  // namespace
