#pragma once

#include <cstdint>
#include <optional>
#include <set>

#include "tools/quillon/video/AvHandles.h"

namespace Quillon::Cli {

/// The times of pictures that went into a decoder and have not come out yet. Pictures come out in
/// the order of their times: one whose time has passed is lost.
class FramesInFlight {
 public:
  explicit FramesInFlight(AVCodecID codec);

  /// Before a packet of a picture that is shown goes into the decoder.
  void Send(const AVPacket& packet);
  /// A picture came out. How many before it were lost.
  std::int64_t Receive(const AVFrame& frame);
  /// The end: how many never came.
  std::int64_t Finish();

 private:
  bool isTold_;  ///< whether each packet is one picture
  std::optional<std::int64_t> firstKey_;
  std::multiset<std::int64_t> times_;
};

}  // namespace Quillon::Cli
