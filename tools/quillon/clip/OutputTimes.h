#pragma once

#include <functional>
#include <optional>

#include "tools/quillon/clip/FrameSelection.h"
#include "tools/quillon/video/AvHandles.h"

namespace Quillon::Cli {

/// Times of an output that shows selected frames of a source: one range begins at 0 and keeps its
/// own times; of several, each follows the one before without a gap. Without a selection times are
/// the source's.
class OutputTimes {
 public:
  /// Time of a frame in the source's time base; nothing past the last frame.
  using PtsOf = std::function<std::optional<std::int64_t>(std::int64_t frame)>;

  OutputTimes(const FrameSelection& selection, const PtsOf& ptsOf, AVRational timeBase);

  /// Time in the output of a selected frame.
  std::int64_t Moved(std::int64_t frame, std::int64_t pts) const;
  /// Whether other streams can go along: not with several ranges.
  bool PassesOn() const { return shifts_.size() <= 1; }
  /// Moves a packet of another stream to its time in the output; false where it lies outside.
  bool Move(AVPacket& packet, AVRational timeBase) const;
  /// Where the selection ends in the source, in seconds.
  double EndSeconds() const { return end_; }

 private:
  struct Shift {
    FrameRange range;
    std::int64_t pts = 0;
  };
  std::vector<Shift> shifts_;
  AVRational timeBase_;
  double begin_;
  double end_;
};

}  // namespace Quillon::Cli
