#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "tools/quillon/video/ClipInput.h"
#include "tools/quillon/video/ClipTags.h"
#include "tools/quillon/video/FrameIndex.h"

/// What a clip is, as far as its head and its first frame tell.
struct ClipInfo {
  std::string container;    ///< FFmpeg's names, as "mov,mp4,m4a,3gp,3g2,mj2"
  std::string codec;        ///< as "hevc"
  std::string pixelFormat;  ///< as "yuv420p10le"
  int width = 0;
  int height = 0;
  int bits = 0;
  AVRational frameRate{0, 1};  ///< on average; 0: not told
  double seconds = 0.0;        ///< 0: not told
  std::int64_t frames = 0;     ///< as the container says, or guessed from rate and duration
  int rotation = 0;            ///< degrees clockwise that players turn it by
  std::string audio;           ///< codecs of the other streams, as "aac, ac3"
  /// Metadata of each picture's own that is not applied: "Dolby Vision", "HDR10+", or both.
  std::string dynamicMetadata;
  ClipTags tags;
};

/// A decoded frame.
struct ClipFrame {
  std::shared_ptr<const AVFrame> samples;
  std::int64_t number = 0;  ///< from 0, as shown
  std::int64_t pts = 0;     ///< in the stream's time base
};

/// What was found damaged.
struct ClipDamage {
  std::int64_t places = 0;
  std::string first;  ///< one sentence on the first; empty: nothing was
};

/// What becomes of a clip at a damaged place.
enum class DamagePolicy {
  Stop,  ///< nothing comes out any more
  GoOn,  ///< pictures come out as the decoder patches them up
};

/// Decodes the video of a clip, frame by frame in the order in which they are shown.
class ClipReader {
 public:
  using PacketHandler = std::function<void(const AVPacket&)>;

  /// Decodes the first frame, to know its tags. With an index, numbers are the index's, and frames
  /// before `firstFrame` are passed over, decoded only as far as the ones after them need it.
  /// Throws CommandError: not a clip, no decoder, no frame.
  explicit ClipReader(std::filesystem::path path, const FrameIndex* index = nullptr,
                      std::int64_t firstFrame = 0, DamagePolicy policy = DamagePolicy::Stop);

  const ClipInfo& Info() const { return info_; }
  const ClipInput& Input() const { return input_; }
  AVRational TimeBase() const { return input_.video->time_base; }

  /// Is given every packet of the other streams as they come along, also those before the first
  /// frame. To be set before the first `Next`.
  void OnOtherPackets(PacketHandler handler);

  /// Nothing at the end of the clip, and at a damaged place where the policy is to stop.
  std::optional<ClipFrame> Next();

  /// Gives the handler the packets of other streams up to a time in seconds; the video is passed
  /// over.
  void PassOtherPackets(double until);

  /// What was found so far.
  const ClipDamage& Damage() const { return damage_; }

  /// After `Next` gave nothing for damage: reads on to the end and counts the other places.
  void CountDamage();

  /// Tags of a frame of this clip.
  ClipTags TagsOfFrame(const AVFrame& frame) const { return TagsOf(frame, *input_.video); }

 private:
  void OpenDecoder();
  std::shared_ptr<AVFrame> Decode();
  bool FeedDecoder();
  void SendVideo(const AVPacket& packet);
  void FinishInput(int result);
  void EndInput();
  bool IsDamaged(const AVFrame& frame);
  bool StopsFor(std::int64_t placesBefore) const;
  void Handle(const AVPacket& packet);
  void NoteDamage(const std::string& what);
  bool IsCutShort() const;
  std::int64_t NumberOf(const AVFrame& frame);

  std::filesystem::path path_;
  DamagePolicy policy_;
  const FrameIndex* index_;
  std::int64_t firstFrame_;
  std::int64_t firstPacket_;
  ClipInput input_;
  AvCodecPtr decoder_;
  AvPacketPtr packet_;
  PacketHandler onOther_;
  std::vector<AvPacketPtr> held_;  ///< packets of other streams from before there was a handler
  std::shared_ptr<AVFrame> ahead_;
  std::int64_t videoPackets_ = 0;
  std::int64_t decoded_ = 0;
  std::int64_t numberAhead_ = 0;
  std::int64_t complaintsBefore_ = 0;
  double endSeconds_ = 0.0;
  bool ended_ = false;
  ClipDamage damage_;
  ClipInfo info_;
};
