#include "tools/quillon/video/FrameIndex.h"

#include <algorithm>
#include <string>

#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

namespace {

/// Six days at 60 frames a second: a head that promises more is wrong.
constexpr std::int64_t kMaxFrames = std::int64_t{1} << 25;

}  // namespace

void FrameIndex::Add(const AVPacket& packet, std::int64_t ordinal) {
  if (packet.pts == AV_NOPTS_VALUE) hasTimes_ = false;
  if (IsShown(packet)) shown_.push_back(packet.pts);
  if ((packet.flags & AV_PKT_FLAG_KEY) != 0) keys_.push_back({packet.pts, ordinal});
}

FrameIndex FrameIndex::Scan(const std::filesystem::path& path, std::int64_t maxPixels) {
  const ClipInput input = OpenClipInput(path, maxPixels);
  FrameIndex index;
  index.Read(input);
  if (index.Count() > kMaxFrames) {
    throw CommandError(ExitCode::NotSupported,
                       path.string() + ": it has more than " + std::to_string(kMaxFrames) +
                           " frames; map it without --frames, --chunk and --resume");
  }
  std::sort(index.shown_.begin(), index.shown_.end());
  return index;
}

void FrameIndex::Read(const ClipInput& input) {
  const AvPacketPtr packet = MakeAvPacket();
  PacketWatch watch(input);
  const auto note = [this](const std::string& wrong) {
    if (!wrong.empty()) damage_.Note(wrong);
  };
  bool begun = !CanBeginAnywhere(input);
  int result = 0;
  while (Count() <= kMaxFrames && (result = ReadPacket(input, *packet)) >= 0) {
    const std::int64_t ordinal = watch.VideoPackets();
    note(watch.Look(*packet));
    if (watch.VideoPackets() == ordinal) continue;
    begun = begun || (packet->flags & AV_PKT_FLAG_KEY) != 0;
    if (begun) Add(*packet, ordinal);
  }
  if (result < 0) note(watch.LookAtEnd(result));
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

}  // namespace Quillon::Cli
