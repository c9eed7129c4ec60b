#include "bench/video/FfmpegVideo.h"

#include <cstddef>
#include <cstring>

#include "bench/Frames.h"
#include "refhost/kestrel/SystemFrame.h"

namespace {

void CopyPlanes(const PX::VideoFrameRef& from, AVFrame* to) {
  const auto planes = orvcore::classref::InterfaceCast<RefHost::IVideoFramePlaneAccess>(from);
  for (int index = 0; index < planes->GetPlaneCount(); ++index) {
    const RefHost::Plane plane = planes->GetPlane(index);
    for (int y = 0; y < plane.height; ++y) {
      std::memcpy(to->data[index] + std::ptrdiff_t{y} * to->linesize[index],
                  static_cast<const std::byte*>(plane.data) + std::ptrdiff_t{y} * plane.rowBytes,
                  static_cast<std::size_t>(plane.width) * 2);
    }
  }
}

}  // namespace

FfmpegVideo::FfmpegVideo(const std::string& toneMap, int threads, const PX::VideoFrameRef& source)
    : graph_(avfilter_graph_alloc()), source_(av_frame_alloc()) {
  source_->format = AV_PIX_FMT_YUV420P10LE;
  source_->width = kWidth;
  source_->height = kHeight;
  source_->color_primaries = AVCOL_PRI_BT2020;
  source_->color_trc = AVCOL_TRC_SMPTE2084;
  source_->colorspace = AVCOL_SPC_BT2020_NCL;
  source_->color_range = AVCOL_RANGE_MPEG;
  source_->chroma_location = AVCHROMA_LOC_LEFT;
  AllocatePlanes(source_.get());
  CopyPlanes(source, source_.get());

  graph_->nb_threads = threads;
  in_ = AddFilter(graph_.get(), "buffer",
                  "video_size=" + std::to_string(kWidth) + "x" + std::to_string(kHeight) +
                      ":pix_fmt=yuv420p10le:time_base=1/1:pixel_aspect=1/1");
  out_ = AddFilter(graph_.get(), "buffersink", "");
  AddFilters(graph_.get(),
             "zscale=t=linear:npl=203,format=gbrpf32le,tonemap=" + toneMap +
                 ",zscale=p=bt709:t=bt709:m=bt709,format=yuv420p",
             in_, out_);
  CheckAv(avfilter_graph_config(graph_.get(), nullptr), "configuration");
}

void FfmpegVideo::MapFrame() {
  const FramePtr result(av_frame_alloc());
  CheckAv(av_buffersrc_add_frame_flags(in_, source_.get(), AV_BUFFERSRC_FLAG_KEEP_REF), "source");
  CheckAv(av_buffersink_get_frame(out_, result.get()), "sink");
  if (result->format != AV_PIX_FMT_YUV420P || result->width != kWidth) {
    throw std::runtime_error("FFmpeg: the result is not what was asked for");
  }
}
