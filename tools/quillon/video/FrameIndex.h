#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

#include "tools/quillon/video/ClipInput.h"
#include "tools/quillon/video/PacketWatch.h"

namespace Quillon::Cli {

/// Where the frames of a clip lie, found by reading all its packets without decoding. Frames count
/// from 0 in the order in which they are shown.
class FrameIndex {
 public:
  /// Goes on past damage. Throws CommandError.
  static FrameIndex Scan(const std::filesystem::path& path,
                         std::int64_t maxPixels = kDefaultMaxPixels);

  /// What the container is found to lack.
  const ClipDamage& Damage() const { return damage_; }

  std::int64_t Count() const { return static_cast<std::int64_t>(shown_.size()); }
  /// The frame of a time stamp; nothing where none has it, or the clip has no time stamps.
  std::optional<std::int64_t> FrameAt(std::int64_t pts) const;
  /// The time stamp of a frame; nothing past the end, or without time stamps.
  std::optional<std::int64_t> PtsOf(std::int64_t frame) const;
  /// The video packet, counted from 0 in the order of the file, at which decoding has to begin for
  /// `frame` to come out whole: the last key frame not shown after it. 0 without time stamps.
  std::int64_t FirstPacketFor(std::int64_t frame) const;

 private:
  struct KeyPacket {
    std::int64_t pts;
    std::int64_t ordinal;
  };
  void Read(const ClipInput& input);
  void Add(const AVPacket& packet, std::int64_t ordinal);

  std::vector<std::int64_t> shown_;  ///< time stamps in rising order
  std::vector<KeyPacket> keys_;      ///< in the order of the file
  bool hasTimes_ = true;
  ClipDamage damage_;
};

}  // namespace Quillon::Cli
