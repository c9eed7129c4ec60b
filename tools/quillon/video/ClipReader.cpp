#include "tools/quillon/video/ClipReader.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "tools/quillon/ExitCodes.h"
#include "tools/quillon/video/AvLog.h"

extern "C" {
#include <libavutil/display.h>
#include <libavutil/pixdesc.h>
}

namespace fs = std::filesystem;

namespace {

/// How much earlier than its head says a clip may end.
constexpr double kToleratedSeconds = 0.5;

std::string SecondsText(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3f s", seconds);
  return text;
}

int RotationOf(const AVStream& stream) {
  const auto* matrix = reinterpret_cast<const std::int32_t*>(
      av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, nullptr));
  if (matrix == nullptr) return 0;
  const double degrees = -av_display_rotation_get(matrix);
  return std::isnan(degrees) ? 0 : static_cast<int>(std::lround(degrees) + 360) % 360;
}

std::string OtherCodecs(const ClipInput& input) {
  std::string names;
  for (unsigned i = 0; i < input.container->nb_streams; ++i) {
    const AVStream& stream = *input.container->streams[i];
    if (&stream == input.video) continue;
    if (!names.empty()) names += ", ";
    names += avcodec_get_name(stream.codecpar->codec_id);
  }
  return names;
}

std::string DynamicMetadataOf(const AVFrame& frame) {
  std::string names;
  if (av_frame_get_side_data(&frame, AV_FRAME_DATA_DOVI_METADATA) != nullptr) {
    names = "Dolby Vision";
  }
  if (av_frame_get_side_data(&frame, AV_FRAME_DATA_DYNAMIC_HDR_PLUS) != nullptr) {
    names += names.empty() ? "HDR10+" : " and HDR10+";
  }
  return names;
}

double DurationOf(const ClipInput& input) {
  if (input.video->duration > 0) {
    return static_cast<double>(input.video->duration) * av_q2d(input.video->time_base);
  }
  const std::int64_t duration = input.container->duration;
  return duration > 0 ? static_cast<double>(duration) / AV_TIME_BASE : 0.0;
}

AVRational RateOf(const AVStream& stream) {
  if (stream.avg_frame_rate.num > 0) return stream.avg_frame_rate;
  return stream.r_frame_rate.num > 0 ? stream.r_frame_rate : AVRational{0, 1};
}

ClipInfo Describe(const ClipInput& input, const AVFrame& first) {
  const auto format = static_cast<AVPixelFormat>(first.format);
  ClipInfo info;
  info.container = input.container->iformat->name;
  info.codec = avcodec_get_name(input.video->codecpar->codec_id);
  info.pixelFormat = av_get_pix_fmt_name(format);
  info.width = first.width;
  info.height = first.height;
  info.bits = av_pix_fmt_desc_get(format)->comp[0].depth;
  info.frameRate = RateOf(*input.video);
  info.seconds = DurationOf(input);
  info.frames = input.video->nb_frames > 0 ? input.video->nb_frames
                                           : std::llround(info.seconds * av_q2d(info.frameRate));
  info.rotation = RotationOf(*input.video);
  info.audio = OtherCodecs(input);
  info.dynamicMetadata = DynamicMetadataOf(first);
  info.tags = TagsOf(first, *input.video);
  return info;
}

}  // namespace

ClipReader::ClipReader(fs::path path, const FrameIndex* index, std::int64_t firstFrame,
                       DamagePolicy policy)
    : path_(std::move(path)),
      policy_(policy),
      index_(index),
      firstFrame_(firstFrame),
      firstPacket_(index == nullptr ? 0 : index->FirstPacketFor(firstFrame)),
      input_(OpenClipInput(path_)),
      packet_(MakeAvPacket()) {
  OpenDecoder();
  complaintsBefore_ = DecoderComplaints();
  ahead_ = Decode();
  if (ahead_ == nullptr) {
    throw CommandError(ExitCode::CannotRead,
                       path_.string() + ": " +
                           (damage_.places > 0 ? "no frame can be decoded: " + damage_.first
                                               : std::string("it has no frames")) +
                           "; check that it is whole");
  }
  info_ = Describe(input_, *ahead_);
}

void ClipReader::OpenDecoder() {
  const AVCodecParameters& parameters = *input_.video->codecpar;
  const AVCodec* codec = avcodec_find_decoder(parameters.codec_id);
  const std::string name = avcodec_get_name(parameters.codec_id);
  if (codec == nullptr) {
    throw CommandError(ExitCode::NotSupported,
                       path_.string() + ": this FFmpeg has no decoder for its video (" + name +
                           "); convert the clip to HEVC, AV1, VP9, ProRes or FFV1");
  }
  decoder_.reset(avcodec_alloc_context3(codec));
  if (decoder_ == nullptr) throw std::bad_alloc();
  decoder_->thread_count = 0;
  decoder_->pkt_timebase = input_.video->time_base;
  decoder_->err_recognition = AV_EF_CRCCHECK | AV_EF_BITSTREAM | AV_EF_BUFFER;
  if (policy_ == DamagePolicy::Stop) decoder_->err_recognition |= AV_EF_EXPLODE;
  int result = avcodec_parameters_to_context(decoder_.get(), &parameters);
  if (result >= 0) result = avcodec_open2(decoder_.get(), codec, nullptr);
  if (result < 0) {
    throw CommandError(ExitCode::CannotRead, path_.string() + ": the decoder for its video (" +
                                                 name + ") does not take it (" +
                                                 AvErrorText(result) +
                                                 "); check that the clip is whole");
  }
}

void ClipReader::OnOtherPackets(PacketHandler handler) {
  onOther_ = std::move(handler);
  for (const AvPacketPtr& packet : held_) onOther_(*packet);
  held_.clear();
}

std::optional<ClipFrame> ClipReader::Next() {
  while (ahead_ != nullptr) {
    const std::shared_ptr<AVFrame> frame = std::exchange(ahead_, nullptr);
    const std::int64_t number = numberAhead_;
    if (!StopsFor(0) || ended_) ahead_ = Decode();
    if (number >= firstFrame_) return ClipFrame{frame, number, frame->pts};
  }
  return std::nullopt;
}

void ClipReader::PassOtherPackets(double until) {
  // How far streams may lag behind each other in a file.
  constexpr double kSlackSeconds = 10.0;
  while (!ended_ && ReadPacket(input_, *packet_) >= 0) {
    const AVStream& stream = *input_.container->streams[packet_->stream_index];
    const double seconds = static_cast<double>(packet_->dts) * av_q2d(stream.time_base);
    if (packet_->dts != AV_NOPTS_VALUE && seconds > until + kSlackSeconds) return;
    if (&stream != input_.video) Handle(*packet_);
  }
}

void ClipReader::CountDamage() {
  while (Decode() != nullptr || FeedDecoder()) {
  }
}

/// The next frame with its time stamp; null at the end and at a damaged place.
std::shared_ptr<AVFrame> ClipReader::Decode() {
  AvFramePtr frame = MakeAvFrame();
  const std::int64_t places = damage_.places;
  for (;;) {
    const int result = avcodec_receive_frame(decoder_.get(), frame.get());
    if (result == 0) break;
    if (result == AVERROR_EOF) return nullptr;
    if (result != AVERROR(EAGAIN)) NoteDamage("a picture cannot be decoded");
    if (StopsFor(places)) return nullptr;
    FeedDecoder();
    if (StopsFor(places) && !ended_) return nullptr;
  }
  frame->pts = frame->best_effort_timestamp;
  numberAhead_ = NumberOf(*frame);
  ++decoded_;
  if (!IsDamaged(*frame)) return frame;
  NoteDamage("frame " + std::to_string(numberAhead_) + " or one soon after it is decoded with " +
             "errors (" + LastDecoderComplaint() + ")");
  return policy_ == DamagePolicy::Stop ? nullptr : std::move(frame);
}

bool ClipReader::StopsFor(std::int64_t placesBefore) const {
  return policy_ == DamagePolicy::Stop && damage_.places != placesBefore;
}

bool ClipReader::IsDamaged(const AVFrame& frame) {
  const std::int64_t complaints = DecoderComplaints();
  const bool complained = complaints != complaintsBefore_;
  complaintsBefore_ = complaints;
  // What comes before the first frame may lack the pictures that it was coded from.
  if (numberAhead_ < firstFrame_) return false;
  return complained || frame.decode_error_flags != 0 || (frame.flags & AV_FRAME_FLAG_CORRUPT) != 0;
}

std::int64_t ClipReader::NumberOf(const AVFrame& frame) {
  if (index_ == nullptr || frame.pts == AV_NOPTS_VALUE) return decoded_;
  return index_->FrameAt(frame.pts).value_or(decoded_);
}

/// Gives the decoder one packet of the video, or the end. False when the end was given before.
bool ClipReader::FeedDecoder() {
  if (ended_) return false;
  for (;;) {
    const int result = ReadPacket(input_, *packet_);
    if (result < 0) {
      FinishInput(result);
      return true;
    }
    if (packet_->stream_index == input_.video->index) break;
    Handle(*packet_);
  }
  SendVideo(*packet_);
  return true;
}

void ClipReader::Handle(const AVPacket& packet) {
  const AVStream& stream = *input_.container->streams[packet.stream_index];
  if (packet.pts != AV_NOPTS_VALUE) {
    endSeconds_ = std::max(
        endSeconds_, static_cast<double>(packet.pts + packet.duration) * av_q2d(stream.time_base));
  }
  if (&stream == input_.video) return;
  if (onOther_) {
    onOther_(packet);
    return;
  }
  AvPacketPtr held(av_packet_clone(&packet));
  if (held == nullptr) throw std::bad_alloc();
  held_.push_back(std::move(held));
}

void ClipReader::SendVideo(const AVPacket& packet) {
  Handle(packet);
  const std::int64_t ordinal = videoPackets_++;
  if (ordinal < firstPacket_) return;
  const std::string name = "video packet " + std::to_string(ordinal);
  if ((packet.flags & AV_PKT_FLAG_CORRUPT) != 0) {
    NoteDamage(name + " is cut short");
    EndInput();
    return;
  }
  const int result = avcodec_send_packet(decoder_.get(), &packet);
  if (result < 0 && result != AVERROR_EOF) {
    NoteDamage(name + " cannot be decoded (" + AvErrorText(result) + ")");
  }
}

/// What the decoder holds comes out still.
void ClipReader::EndInput() {
  ended_ = true;
  avcodec_send_packet(decoder_.get(), nullptr);
}

void ClipReader::FinishInput(int result) {
  EndInput();
  if (result != AVERROR_EOF) {
    NoteDamage("the file cannot be read on (" + AvErrorText(result) + ")");
  } else if (IsCutShort()) {
    NoteDamage("the file ends early, at " + SecondsText(endSeconds_) + " of " +
               SecondsText(static_cast<double>(input_.container->duration) / AV_TIME_BASE));
  }
}

bool ClipReader::IsCutShort() const {
  if (videoPackets_ < input_.video->nb_frames) return true;
  const AVFormatContext& container = *input_.container;
  if (container.duration <= 0 ||
      container.duration_estimation_method == AVFMT_DURATION_FROM_BITRATE) {
    return false;
  }
  const double start = container.start_time == AV_NOPTS_VALUE
                           ? 0.0
                           : static_cast<double>(container.start_time) / AV_TIME_BASE;
  const double end = start + static_cast<double>(container.duration) / AV_TIME_BASE;
  return endSeconds_ + kToleratedSeconds < end;
}

void ClipReader::NoteDamage(const std::string& what) {
  if (damage_.places++ == 0) damage_.first = what;
}
