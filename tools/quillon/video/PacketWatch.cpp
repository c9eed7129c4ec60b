#include "tools/quillon/video/PacketWatch.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace Quillon::Cli {

namespace {

/// How much earlier than its head says a clip may end.
constexpr double kToleratedSeconds = 0.5;

std::string SecondsText(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f s", seconds);
  return text;
}

std::string Broken(const ClipInput& input) {
  return "the file is broken (" + input.complaints->Last() + ")";
}

}  // namespace

PacketWatch::PacketWatch(const ClipInput& input)
    : input_(input), complaintsBefore_(input.complaints->Count()) {}

std::string PacketWatch::Look(const AVPacket& packet) {
  const AVStream& stream = *input_.container->streams[packet.stream_index];
  if (packet.pts != AV_NOPTS_VALUE) {
    endSeconds_ = std::max(
        endSeconds_, static_cast<double>(packet.pts + packet.duration) * av_q2d(stream.time_base));
  }
  const std::int64_t ordinal = &stream == input_.video ? videoPackets_++ : -1;
  const std::int64_t complaints = input_.complaints->Count();
  if (complaints != std::exchange(complaintsBefore_, complaints)) return Broken(input_);
  if ((packet.flags & AV_PKT_FLAG_CORRUPT) == 0) return {};
  return ordinal < 0 ? "a packet of " + NameOfStream(stream) + " is cut short"
                     : "video packet " + std::to_string(ordinal) + " is cut short";
}

std::string PacketWatch::LookAtEnd(int result) const {
  if (result != AVERROR_EOF) return "the file cannot be read on (" + AvErrorText(result) + ")";
  const AVFormatContext& container = *input_.container;
  // Matroska tells when the clip ends, others how long it lasts.
  const bool isEnd = std::string(container.iformat->name).starts_with("matroska");
  const double start = isEnd || container.start_time == AV_NOPTS_VALUE
                           ? 0.0
                           : static_cast<double>(container.start_time) / AV_TIME_BASE;
  const double duration = static_cast<double>(container.duration) / AV_TIME_BASE;
  const bool isGuess = container.duration_estimation_method == AVFMT_DURATION_FROM_BITRATE;
  if (duration > 0 && !isGuess && endSeconds_ + kToleratedSeconds < start + duration) {
    return "the file ends early, at " + SecondsText(endSeconds_) + " of " + SecondsText(duration);
  }
  if (videoPackets_ < input_.video->nb_frames) {
    return "the file has " + std::to_string(videoPackets_) + " of " +
           std::to_string(input_.video->nb_frames) + " frames";
  }
  // From while it was opened, when some of it is read ahead.
  return input_.complaints->Count() > 0 ? Broken(input_) : std::string();
}

}  // namespace Quillon::Cli
