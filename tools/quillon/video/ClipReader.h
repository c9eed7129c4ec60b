#pragma once

#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "tools/quillon/video/ClipInfo.h"
#include "tools/quillon/video/ClipInput.h"
#include "tools/quillon/video/FrameIndex.h"
#include "tools/quillon/video/FramesInFlight.h"
#include "tools/quillon/video/PacketWatch.h"
#include "tools/quillon/video/SteadyTimes.h"

namespace Quillon::Cli {

/// A decoded frame.
struct ClipFrame {
  std::shared_ptr<const AVFrame> samples;
  std::int64_t number = 0;  ///< from 0, as shown
  std::int64_t pts = 0;     ///< in the stream's time base
};

/// What is read of a clip: a frame, or a packet of another stream than the video.
using ClipItem = std::variant<ClipFrame, AvPacketPtr>;

/// What becomes of a clip at a damaged place.
enum class DamagePolicy {
  Stop,  ///< nothing comes out any more
  GoOn,  ///< pictures come out as the decoder patches them up
};

/// Decodes the video of a clip, frame by frame in the order in which they are shown. It holds a few
/// frames and no more than the packets up to the first; nothing is called back. One thread.
class ClipReader {
 public:
  /// Decodes the first frame, to know its tags. With an index, numbers are the index's, and frames
  /// before `firstFrame` are passed over, decoded only as far as the ones after them need it.
  /// Throws CommandError: not a clip, no decoder, no frame, frames of more than `maxPixels`.
  explicit ClipReader(std::filesystem::path path, const FrameIndex* index = nullptr,
                      std::int64_t firstFrame = 0, DamagePolicy policy = DamagePolicy::Stop,
                      std::int64_t maxPixels = kDefaultMaxPixels);

  const ClipInfo& Info() const { return info_; }
  const ClipInput& Input() const { return input_; }
  AVRational TimeBase() const { return input_.video->time_base; }

  /// The next frame, or the next packet of another stream, in the order of the file; packets from
  /// before the first frame too. Nothing at the end of the clip, and at a damaged place where the
  /// policy is to stop.
  std::optional<ClipItem> NextItem();
  /// The next frame; packets of other streams are dropped.
  std::optional<ClipFrame> Next();
  /// The next packet of another stream up to a time in seconds; the video is passed over. Null:
  /// there is none.
  AvPacketPtr NextPacket(double until);

  /// What was found so far.
  const ClipDamage& Damage() const { return damage_; }

  /// After damage stopped the clip: reads on to the end, or until `isStopped`, and counts the other
  /// places.
  void CountDamage(const std::function<bool()>& isStopped);

  /// Tags of a frame of this clip.
  ClipTags TagsOfFrame(const AVFrame& frame) const { return TagsOf(frame, *input_.video); }

 private:
  void OpenDecoder(std::int64_t maxPixels);
  void DecodeFirst();
  bool Step();
  void TakeFrame(AvFramePtr frame);
  void FinishFrames();
  void ReadOn();
  void Look(const AVPacket& packet);
  void TakeVideo(const AVPacket& packet, std::int64_t ordinal);
  void SendVideo(const AVPacket& packet, const std::string& name);
  void EndInput();
  void FinishInput(int result);
  bool IsDamaged(const AVFrame& frame);
  void NoteLost(std::int64_t lost, const std::string& where);
  void NoteMissing(const AVFrame& frame, std::int64_t number);
  void NoteDamageAndStop(const std::string& what);
  std::int64_t NumberOf(const AVFrame& frame);

  std::filesystem::path path_;
  DamagePolicy policy_;
  const FrameIndex* index_;
  std::int64_t firstFrame_;
  std::int64_t firstPacket_;
  ClipInput input_;
  AvComplaints decoderComplaints_;
  AvCodecPtr decoder_;
  PacketWatch watch_;
  AvPacketPtr packet_;
  FramesInFlight inFlight_;
  SteadyTimes times_;
  std::deque<AvPacketPtr> others_;  ///< packets of other streams that nobody took yet
  std::optional<ClipFrame> ahead_;
  std::int64_t decoded_ = 0;
  std::int64_t complaintsBefore_ = 0;
  std::int64_t undecoded_ = 0;  ///< failures that a frame was lost for, not yet missed
  int failuresAtEnd_ = 0;
  bool keySeen_;          ///< or none has to be waited for
  bool ended_ = false;    ///< the decoder was told the end
  bool atEnd_ = false;    ///< and it is the end of the file
  bool stopped_ = false;  ///< by damage
  ClipDamage damage_;
  ClipInfo info_;
};

}  // namespace Quillon::Cli
