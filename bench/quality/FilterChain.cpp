#include "bench/quality/FilterChain.h"

#include <algorithm>
#include <array>
#include <cstddef>

extern "C" {
#include <libavutil/mastering_display_metadata.h>
#include <libavutil/pixdesc.h>
}

namespace Quality {

namespace {

constexpr std::size_t kWidth = 512;

// Planes of gbrpf32 in FFmpeg's order.
constexpr std::array kPlanes = {&Signal::green, &Signal::blue, &Signal::red};

float* RowOf(AVFrame* frame, std::size_t plane, std::size_t y) {
  return reinterpret_cast<float*>(frame->data[plane] +
                                  static_cast<std::ptrdiff_t>(y) * frame->linesize[plane]);
}

void TellPeak(AVFrame* frame, double peakNits) {
  auto* light = av_content_light_metadata_create_side_data(frame);
  auto* display = av_mastering_display_metadata_create_side_data(frame);
  if (light == nullptr || display == nullptr) throw std::bad_alloc();
  light->MaxCLL = static_cast<unsigned>(peakNits);
  display->has_luminance = 1;
  display->max_luminance = {static_cast<int>(peakNits), 1};
  display->min_luminance = {0, 1};
}

/// The pixels in rows of `kWidth`, the rest black.
FramePtr FrameOf(const std::vector<Signal>& pixels, double peakNits) {
  FramePtr frame(av_frame_alloc());
  frame->format = AV_PIX_FMT_GBRPF32LE;
  frame->width = kWidth;
  frame->height = static_cast<int>((pixels.size() + kWidth - 1) / kWidth);
  frame->color_primaries = AVCOL_PRI_BT2020;
  frame->color_trc = AVCOL_TRC_SMPTE2084;
  frame->colorspace = AVCOL_SPC_RGB;
  frame->color_range = AVCOL_RANGE_JPEG;
  frame->sample_aspect_ratio = {1, 1};
  CheckAv(av_frame_get_buffer(frame.get(), 0), "frame");
  for (std::size_t plane = 0; plane < kPlanes.size(); ++plane) {
    for (std::size_t i = 0; i < kWidth * static_cast<std::size_t>(frame->height); ++i) {
      const double code = i < pixels.size() ? pixels[i].*kPlanes[plane] : 0.0;
      RowOf(frame.get(), plane, i / kWidth)[i % kWidth] = static_cast<float>(code);
    }
  }
  TellPeak(frame.get(), peakNits);
  return frame;
}

std::vector<Signal> PixelsOf(AVFrame* frame, std::size_t count) {
  std::vector<Signal> pixels(count);
  for (std::size_t plane = 0; plane < kPlanes.size(); ++plane) {
    for (std::size_t i = 0; i < count; ++i) {
      const double code = RowOf(frame, plane, i / kWidth)[i % kWidth];
      pixels[i].*kPlanes[plane] = std::clamp(code, 0.0, 1.0);
    }
  }
  return pixels;
}

}  // namespace

std::vector<Signal> MapByFilters(const std::string& filters, const std::vector<Signal>& pixels,
                                 double peakNits, AVBufferRef* device) {
  const FramePtr source = FrameOf(pixels, peakNits);
  const GraphPtr graph(avfilter_graph_alloc());
  AVFilterContext* in = AddFilter(graph.get(), "buffer",
                                  "video_size=" + std::to_string(source->width) + "x" +
                                      std::to_string(source->height) +
                                      ":pix_fmt=gbrpf32le:time_base=1/1:pixel_aspect=1/1");
  AVFilterContext* out = AddFilter(graph.get(), "buffersink", "");
  AddFilters(graph.get(), filters, in, out);
  if (device != nullptr) {
    for (unsigned i = 0; i < graph->nb_filters; ++i) {
      graph->filters[i]->hw_device_ctx = av_buffer_ref(device);
    }
  }
  CheckAv(avfilter_graph_config(graph.get(), nullptr), filters.c_str());

  const FramePtr result(av_frame_alloc());
  CheckAv(av_buffersrc_add_frame_flags(in, source.get(), AV_BUFFERSRC_FLAG_KEEP_REF), "source");
  CheckAv(av_buffersink_get_frame(out, result.get()), "sink");
  if (result->format != AV_PIX_FMT_GBRPF32LE || result->width != source->width ||
      result->height != source->height || result->color_trc != AVCOL_TRC_BT709 ||
      result->color_primaries != AVCOL_PRI_BT709) {
    throw std::runtime_error("FFmpeg: the result is not what was asked for");
  }
  return PixelsOf(result.get(), pixels.size());
}

}  // namespace Quality
