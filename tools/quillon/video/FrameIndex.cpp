#include "tools/quillon/video/FrameIndex.h"

#include <algorithm>

void FrameIndex::Add(const AVPacket& packet, std::int64_t ordinal) {
  if (packet.pts == AV_NOPTS_VALUE) hasTimes_ = false;
  if (IsShown(packet)) shown_.push_back(packet.pts);
  if ((packet.flags & AV_PKT_FLAG_KEY) != 0) keys_.push_back({packet.pts, ordinal});
}

FrameIndex FrameIndex::Scan(const std::filesystem::path& path) {
  const ClipInput input = OpenClipInput(path);
  const AvPacketPtr packet = MakeAvPacket();
  FrameIndex index;
  std::int64_t ordinal = 0;
  while (ReadPacket(input, *packet) >= 0) {
    if (packet->stream_index == input.video->index) index.Add(*packet, ordinal++);
  }
  std::sort(index.shown_.begin(), index.shown_.end());
  return index;
}

std::optional<std::int64_t> FrameIndex::FrameAt(std::int64_t pts) const {
  if (!hasTimes_) return std::nullopt;
  const auto found = std::lower_bound(shown_.begin(), shown_.end(), pts);
  if (found == shown_.end() || *found != pts) return std::nullopt;
  return found - shown_.begin();
}

std::optional<std::int64_t> FrameIndex::PtsOf(std::int64_t frame) const {
  if (!hasTimes_ || frame < 0 || frame >= Count()) return std::nullopt;
  return shown_[static_cast<std::size_t>(frame)];
}

std::int64_t FrameIndex::FirstPacketFor(std::int64_t frame) const {
  const auto pts = PtsOf(frame);
  if (!pts) return 0;
  std::int64_t first = 0;
  for (const KeyPacket& key : keys_) {
    if (key.pts <= *pts) first = std::max(first, key.ordinal);
  }
  return first;
}
