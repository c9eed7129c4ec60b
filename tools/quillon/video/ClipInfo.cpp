#include "tools/quillon/video/ClipInfo.h"

#include <cmath>

extern "C" {
#include <libavutil/display.h>
#include <libavutil/pixdesc.h>
}

namespace Quillon::Cli {

namespace {

int RotationOf(const AVStream& stream) {
  const auto* matrix = reinterpret_cast<const std::int32_t*>(
      av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr));
  if (matrix == nullptr) return 0;
  const double degrees = -av_display_rotation_get(matrix);
  return std::isnan(degrees) ? 0 : static_cast<int>(std::lround(degrees) + 360) % 360;
}

std::string OtherCodecs(const ClipInput& input) {
  std::string names;
  for (unsigned i = 0; i < input.container->nb_streams; ++i) {
    const AVStream& stream = *input.container->streams[i];
    if (&stream == input.video) continue;
    if (!names.empty()) names += ", ";
    names += avcodec_get_name(stream.codecpar->codec_id);
  }
  return names;
}

std::string DynamicMetadataOf(const AVFrame& frame) {
  std::string names;
  if (av_frame_get_side_data(&frame, AV_FRAME_DATA_DOVI_METADATA) != nullptr) {
    names = "Dolby Vision";
  }
  if (av_frame_get_side_data(&frame, AV_FRAME_DATA_DYNAMIC_HDR_PLUS) != nullptr) {
    names += names.empty() ? "HDR10+" : " and HDR10+";
  }
  return names;
}

double DurationOf(const ClipInput& input) {
  if (input.video->duration > 0) {
    return static_cast<double>(input.video->duration) * av_q2d(input.video->time_base);
  }
  const std::int64_t duration = input.container->duration;
  return duration > 0 ? static_cast<double>(duration) / AV_TIME_BASE : 0.0;
}

AVRational RateOf(const AVStream& stream) {
  if (stream.avg_frame_rate.num > 0) return stream.avg_frame_rate;
  return stream.r_frame_rate.num > 0 ? stream.r_frame_rate : AVRational{0, 1};
}

}  // namespace

ClipInfo DescribeClip(const ClipInput& input, const AVFrame& first) {
  const auto format = static_cast<AVPixelFormat>(first.format);
  ClipInfo info;
  info.container = input.container->iformat->name;
  info.codec = avcodec_get_name(input.video->codecpar->codec_id);
  info.pixelFormat = av_get_pix_fmt_name(format);
  info.width = first.width;
  info.height = first.height;
  info.bits = av_pix_fmt_desc_get(format)->comp[0].depth;
  info.frameRate = RateOf(*input.video);
  info.seconds = DurationOf(input);
  info.frames = input.video->nb_frames > 0 ? input.video->nb_frames
                                           : std::llround(info.seconds * av_q2d(info.frameRate));
  info.rotation = RotationOf(*input.video);
  info.audio = OtherCodecs(input);
  info.dynamicMetadata = DynamicMetadataOf(first);
  info.tags = TagsOf(first, *input.video);
  return info;
}

}  // namespace Quillon::Cli
