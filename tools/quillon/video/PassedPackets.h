#pragma once

#include <cstdint>
#include <deque>
#include <vector>

#include "tools/quillon/video/AvHandles.h"

namespace Quillon::Cli {

/// The packets of streams that pass through as they are and wait in a muxer, which writes in the
/// order of time: to tell whose packet it refused.
class PassedPackets {
 public:
  /// Before the muxer gets a packet, in time of its stream there.
  void Add(const AVFormatContext& container, const AVPacket& packet);
  /// After a call of the muxer that refused a packet: its stream in the container; -1: none of
  /// these.
  int FindRefused(const AVFormatContext& container);

 private:
  struct Waiting {
    int stream = -1;
    std::deque<double> seconds;
    std::int64_t gone = 0;  ///< written or refused
    std::int64_t refused = 0;
  };
  Waiting& Of(int stream);
  static int Refuse(Waiting& waiting, bool newest);
  void DropWritten(const AVFormatContext& container);

  std::vector<Waiting> streams_;
};

}  // namespace Quillon::Cli
