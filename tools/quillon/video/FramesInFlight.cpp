#include "tools/quillon/video/FramesInFlight.h"

#include <iterator>

namespace Quillon::Cli {

namespace {

/// Packets of other codecs may hold several pictures, or one that is never shown.
bool IsPacketAPicture(AVCodecID codec) {
  const AVCodecDescriptor* descriptor = avcodec_descriptor_get(codec);
  if (descriptor != nullptr && (descriptor->props & AV_CODEC_PROP_INTRA_ONLY) != 0) return true;
  return codec == AV_CODEC_ID_H264 || codec == AV_CODEC_ID_HEVC || codec == AV_CODEC_ID_AV1 ||
         codec == AV_CODEC_ID_VP9;
}

}  // namespace

FramesInFlight::FramesInFlight(AVCodecID codec) : isTold_(IsPacketAPicture(codec)) {}

void FramesInFlight::Send(const AVPacket& packet) {
  if (!isTold_ || packet.pts == AV_NOPTS_VALUE) return;
  if (!firstKey_ && (packet.flags & AV_PKT_FLAG_KEY) != 0) firstKey_ = packet.pts;
  // What is shown before the first key frame may lack the pictures that it was coded from.
  if (firstKey_ && packet.pts >= *firstKey_) times_.insert(packet.pts);
}

std::int64_t FramesInFlight::Receive(const AVFrame& frame) {
  // Two fields, two packets, one picture.
  if (frame.interlaced_frame != 0) isTold_ = false;
  if (!isTold_ || frame.pts == AV_NOPTS_VALUE) {
    times_.clear();
    return 0;
  }
  const auto reached = times_.lower_bound(frame.pts);
  const std::int64_t lost = std::distance(times_.begin(), reached);
  times_.erase(times_.begin(), reached);
  if (!times_.empty() && *times_.begin() == frame.pts) times_.erase(times_.begin());
  return lost;
}

std::int64_t FramesInFlight::Finish() {
  const auto lost = static_cast<std::int64_t>(times_.size());
  times_.clear();
  return lost;
}

}  // namespace Quillon::Cli
