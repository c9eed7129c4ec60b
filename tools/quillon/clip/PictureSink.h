#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/quillon/clip/ClipPicture.h"
#include "tools/quillon/video/PacketWatch.h"

namespace Quillon::Cli {

/// A picture to map into.
struct MappedPicture {
  PX::VideoFrameRef frame;
  std::shared_ptr<AVFrame> samples;  ///< what `frame` shows; null for image sequences
  std::int64_t number = 0;           ///< of the source's picture
  std::int64_t pts = 0;              ///< in the source's time base, from where the output begins
};

/// Where mapped pictures go: a clip, or an image sequence. `NewPicture` may be called on another
/// thread than the rest.
class PictureSink {
 public:
  virtual ~PictureSink() = default;

  /// Sentences on what of the source is left out.
  virtual std::vector<std::string> Remarks() const { return {}; }
  /// Contents undefined.
  virtual MappedPicture NewPicture() = 0;
  /// Whether the output has this picture already.
  virtual bool Has(std::int64_t /*number*/) const { return false; }
  /// Pictures in rising order of time. `source` is the picture that was mapped.
  virtual void Write(MappedPicture picture, const ClipPicture& source) = 0;
  /// A packet of another stream of the source, in time of the output.
  virtual void PassOn(const AVPacket& /*packet*/) {}
  /// Writes all that waits.
  virtual void Flush() {}
  /// Packets that were passed on and that the output does not take for what they hold.
  virtual ClipDamage Refused() const { return {}; }
  /// Ends the output and gives it its name.
  virtual void Finish() = 0;
  /// Ends the output without giving it its name: with all that was written or, at once, with what
  /// has reached the file. What there is, for the user; empty: nothing.
  virtual std::string Abandon(bool atOnce) = 0;
};

}  // namespace Quillon::Cli
