#pragma once

#include <cstdint>
#include <string>

#include "tools/quillon/video/ClipInput.h"

namespace Quillon::Cli {

/// What was found damaged.
struct ClipDamage {
  std::int64_t places = 0;
  std::string first;  ///< one sentence on the first; empty: nothing was

  void Note(const std::string& what) {
    if (places++ == 0) first = what;
  }
};

/// Compares the packets of a container with what it promised. To be made when it is open, and given
/// every packet.
class PacketWatch {
 public:
  explicit PacketWatch(const ClipInput& input);

  /// What is wrong at the place that was just read; empty: nothing. `packet` may be blank.
  std::string Look(const AVPacket& packet);
  /// What is wrong at the end, where reading gave `result`; empty: nothing.
  std::string LookAtEnd(int result) const;

  /// Of the video, so far.
  std::int64_t VideoPackets() const { return videoPackets_; }

 private:
  const ClipInput& input_;
  std::int64_t complaintsBefore_;
  std::int64_t videoPackets_ = 0;
  double endSeconds_ = 0.0;
};

}  // namespace Quillon::Cli
