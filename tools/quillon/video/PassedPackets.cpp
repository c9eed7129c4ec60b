#include "tools/quillon/video/PassedPackets.h"

#include <algorithm>

namespace Quillon::Cli {

PassedPackets::Waiting& PassedPackets::Of(int stream) {
  const auto found = std::find_if(streams_.begin(), streams_.end(),
                                  [stream](const Waiting& w) { return w.stream == stream; });
  if (found != streams_.end()) return *found;
  streams_.push_back({stream, {}, 0, 0});
  return streams_.back();
}

void PassedPackets::Add(const AVFormatContext& container, const AVPacket& packet) {
  DropWritten(container);
  const AVRational timeBase = container.streams[packet.stream_index]->time_base;
  Of(packet.stream_index).seconds.push_back(static_cast<double>(packet.dts) * av_q2d(timeBase));
}

int PassedPackets::FindRefused(const AVFormatContext& container) {
  DropWritten(container);
  Waiting* first = nullptr;
  for (Waiting& waiting : streams_) {
    if (waiting.seconds.empty()) continue;
    // A packet that goes back in time is refused when it comes.
    const auto& times = waiting.seconds;
    const bool goesBack = times.size() > 1 && times.back() <= times[times.size() - 2];
    if (goesBack) return Refuse(waiting, true);
    if (first == nullptr || times.front() < first->seconds.front()) first = &waiting;
  }
  return first == nullptr ? -1 : Refuse(*first, false);
}

int PassedPackets::Refuse(Waiting& waiting, bool newest) {
  newest ? waiting.seconds.pop_back() : waiting.seconds.pop_front();
  ++waiting.gone;
  ++waiting.refused;
  return waiting.stream;
}

void PassedPackets::DropWritten(const AVFormatContext& container) {
  for (Waiting& waiting : streams_) {
    const std::int64_t gone = container.streams[waiting.stream]->nb_frames + waiting.refused;
    for (; waiting.gone < gone && !waiting.seconds.empty(); ++waiting.gone) {
      waiting.seconds.pop_front();
    }
  }
}

}  // namespace Quillon::Cli
