#include "tools/quillon/clip/OutputTimes.h"

#include <limits>

namespace Quillon::Cli {

namespace {
constexpr double kAlways = std::numeric_limits<double>::infinity();
}

OutputTimes::OutputTimes(const FrameSelection& selection, const PtsOf& ptsOf, AVRational timeBase)
    : timeBase_(timeBase), begin_(-kAlways), end_(kAlways) {
  std::int64_t outputEnd = 0;
  for (const FrameRange& range : selection.Ranges()) {
    const std::int64_t first = ptsOf(range.first).value_or(range.first);
    shifts_.push_back({range, first - outputEnd});
    const auto next = ptsOf(range.last + 1);
    if (next) outputEnd += *next - first;
    end_ = next ? static_cast<double>(*next) * av_q2d(timeBase) : kAlways;
  }
  if (!shifts_.empty() && selection.First() > 0) {
    begin_ = static_cast<double>(shifts_.front().pts) * av_q2d(timeBase);
  }
}

std::int64_t OutputTimes::Moved(std::int64_t frame, std::int64_t pts) const {
  for (const Shift& shift : shifts_) {
    if (shift.range.first <= frame && frame <= shift.range.last) return pts - shift.pts;
  }
  return pts;
}

bool OutputTimes::Move(AVPacket& packet, AVRational timeBase) const {
  if (!PassesOn()) return false;
  if (shifts_.empty()) return true;
  const std::int64_t time = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
  const double seconds = static_cast<double>(time) * av_q2d(timeBase);
  if (seconds < begin_ || seconds >= end_) return false;
  const std::int64_t shift = av_rescale_q(shifts_.front().pts, timeBase_, timeBase);
  if (packet.pts != AV_NOPTS_VALUE) packet.pts -= shift;
  if (packet.dts != AV_NOPTS_VALUE) packet.dts -= shift;
  return true;
}

}  // namespace Quillon::Cli
