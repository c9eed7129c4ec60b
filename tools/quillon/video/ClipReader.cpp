#include "tools/quillon/video/ClipReader.h"

#include <algorithm>
#include <new>
#include <utility>

#include "tools/quillon/process/ExitCodes.h"
#include "tools/quillon/process/Words.h"

namespace Quillon::Cli {

namespace fs = std::filesystem;

namespace {

/// How far streams may lag behind each other in a file.
constexpr double kSlackSeconds = 10.0;
/// Bytes of other streams that may lie before the first frame.
constexpr std::int64_t kMaxBytesBeforeFirst = std::int64_t{1} << 28;
/// A decoder that fails more often than this after the last packet is at its end.
constexpr int kMaxFailuresAtEnd = 1000;

AvPacketPtr Clone(const AVPacket& packet) {
  AvPacketPtr clone(av_packet_clone(&packet));
  if (clone == nullptr) throw std::bad_alloc();
  return clone;
}

/// Transport streams promise nothing of their frames but times; the times of others may vary.
double SteadyRateOf(const ClipInput& input) {
  const bool isTransport = (input.container->iformat->flags & AVFMT_TS_DISCONT) != 0;
  const AVRational rate = input.video->avg_frame_rate;
  return isTransport && rate.num > 0 ? av_q2d(rate) : 0.0;
}

}  // namespace

ClipReader::ClipReader(fs::path path, const FrameIndex* index, std::int64_t firstFrame,
                       DamagePolicy policy, std::int64_t maxPixels)
    : path_(std::move(path)),
      policy_(policy),
      index_(index),
      firstFrame_(firstFrame),
      firstPacket_(index == nullptr ? 0 : index->FirstPacketFor(firstFrame)),
      input_(OpenClipInput(path_, maxPixels)),
      watch_(input_),
      packet_(MakeAvPacket()),
      inFlight_(input_.video->codecpar->codec_id),
      times_(SteadyRateOf(input_)),
      keySeen_(!CanBeginAnywhere(input_)) {
  OpenDecoder(maxPixels);
  DecodeFirst();
  info_ = DescribeClip(input_, *ahead_->samples);
}

void ClipReader::OpenDecoder(std::int64_t maxPixels) {
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
  decoder_->opaque = &decoderComplaints_;
  decoder_->err_recognition = AV_EF_CRCCHECK | AV_EF_BITSTREAM | AV_EF_BUFFER;
  if (policy_ == DamagePolicy::Stop) decoder_->err_recognition |= AV_EF_EXPLODE;
  int result = avcodec_parameters_to_context(decoder_.get(), &parameters);
  decoder_->max_pixels = maxPixels;
  if (result >= 0) result = avcodec_open2(decoder_.get(), codec, nullptr);
  if (result < 0) {
    throw CommandError(ExitCode::CannotRead, path_.string() + ": the decoder for its video (" +
                                                 name + ") does not take it (" +
                                                 AvErrorText(result) +
                                                 "); check that the clip is whole");
  }
}

void ClipReader::DecodeFirst() {
  std::int64_t bytes = 0;
  std::size_t counted = 0;
  while (!ahead_ && Step()) {
    for (; counted < others_.size(); ++counted) bytes += others_[counted]->size;
    if (bytes <= kMaxBytesBeforeFirst) continue;
    damage_.Note("no picture comes in " + std::to_string(bytes) + " bytes of other streams");
    break;
  }
  if (ahead_) return;
  throw CommandError(ExitCode::CannotRead,
                     path_.string() + ": " +
                         (damage_.places > 0 ? "no frame can be decoded: " + damage_.first
                                             : std::string("it has no frames")) +
                         "; check that it is whole");
}

std::optional<ClipItem> ClipReader::NextItem() {
  do {
    if (!others_.empty()) {
      AvPacketPtr packet = std::move(others_.front());
      others_.pop_front();
      return packet;
    }
    if (ahead_) {
      ClipFrame frame = *std::exchange(ahead_, std::nullopt);
      if (frame.number >= firstFrame_) return frame;
    }
  } while (Step() || !others_.empty() || ahead_);
  return std::nullopt;
}

std::optional<ClipFrame> ClipReader::Next() {
  while (auto item = NextItem()) {
    // NOLINTNEXTLINE(bugprone-unchecked-optional-access): the loop checks it
    if (auto* frame = std::get_if<ClipFrame>(&*item)) return std::move(*frame);
  }
  return std::nullopt;
}

AvPacketPtr ClipReader::NextPacket(double until) {
  while (others_.empty() && !ended_ && !stopped_) {
    if (ReadPacket(input_, *packet_) < 0) return nullptr;
    const AVStream& stream = *input_.container->streams[packet_->stream_index];
    const double seconds = static_cast<double>(packet_->dts) * av_q2d(stream.time_base);
    if (packet_->dts != AV_NOPTS_VALUE && seconds > until + kSlackSeconds) return nullptr;
    Look(*packet_);
    if (&stream != input_.video) others_.push_back(Clone(*packet_));
  }
  if (others_.empty()) return nullptr;
  AvPacketPtr packet = std::move(others_.front());
  others_.pop_front();
  return packet;
}

void ClipReader::CountDamage(const std::function<bool()>& isStopped) {
  policy_ = DamagePolicy::GoOn;
  stopped_ = false;
  if (ended_ && !atEnd_) {
    avcodec_flush_buffers(decoder_.get());
    inFlight_ = FramesInFlight(decoder_->codec_id);
    ended_ = false;
    keySeen_ = false;
  }
  while (!isStopped() && Step()) {
    ahead_.reset();
    others_.clear();
  }
}

/// Takes a frame out of the decoder or, where it has none, reads a packet. False at the end, and
/// where damage stops the clip.
bool ClipReader::Step() {
  if (stopped_) return false;
  AvFramePtr frame = MakeAvFrame();
  const int result = avcodec_receive_frame(decoder_.get(), frame.get());
  if (result == 0) {
    TakeFrame(std::move(frame));
    return true;
  }
  if (result == AVERROR(EAGAIN) && !ended_) {
    ReadOn();
    return true;
  }
  if (result == AVERROR_EOF || result == AVERROR(EAGAIN)) {
    FinishFrames();
    return false;
  }
  ++undecoded_;
  NoteDamageAndStop("a picture cannot be decoded (" + AvErrorText(result) + ")");
  return !ended_ || ++failuresAtEnd_ <= kMaxFailuresAtEnd;
}

void ClipReader::TakeFrame(AvFramePtr frame) {
  const std::int64_t lost = inFlight_.Receive(*frame);
  frame->pts = frame->best_effort_timestamp;
  const std::int64_t number = NumberOf(*frame);
  ++decoded_;
  const bool damaged = number >= firstFrame_ && IsDamaged(*frame);
  if (damaged) {
    NoteDamageAndStop("frame " + std::to_string(number) + " or one soon after it is decoded with " +
                      "errors (" + decoderComplaints_.Last() + ")");
  } else if (index_ == nullptr || number > firstFrame_) {
    NoteLost(lost, "before frame " + std::to_string(number));
    NoteMissing(*frame, number);
  }
  // What comes before the first frame may lack the pictures that it was coded from.
  complaintsBefore_ = decoderComplaints_.Count();
  if (stopped_) return;
  const std::int64_t pts = frame->pts;
  ahead_ = ClipFrame{std::move(frame), number, pts};
}

void ClipReader::FinishFrames() {
  if (stopped_ || !atEnd_) return;
  const bool complained = decoderComplaints_.Count() != complaintsBefore_;
  if (complained && damage_.places == 0) {
    NoteDamageAndStop("the end is decoded with errors (" + decoderComplaints_.Last() + ")");
  }
  NoteLost(inFlight_.Finish(), "at the end");
}

bool ClipReader::IsDamaged(const AVFrame& frame) {
  return decoderComplaints_.Count() != complaintsBefore_ || frame.decode_error_flags != 0 ||
         (frame.flags & AV_FRAME_FLAG_CORRUPT) != 0;
}

std::int64_t ClipReader::NumberOf(const AVFrame& frame) {
  if (index_ == nullptr || frame.pts == AV_NOPTS_VALUE) return decoded_;
  return index_->FrameAt(frame.pts).value_or(decoded_);
}

/// Reads a packet, and gives the decoder what is for it.
void ClipReader::ReadOn() {
  const int result = ReadPacket(input_, *packet_);
  if (result < 0) return FinishInput(result);
  const std::int64_t ordinal = watch_.VideoPackets();
  Look(*packet_);
  if (packet_->stream_index != input_.video->index) {
    others_.push_back(Clone(*packet_));
  } else {
    TakeVideo(*packet_, ordinal);
  }
}

/// What the decoder got before a damaged place is whole, and comes out still.
void ClipReader::Look(const AVPacket& packet) {
  const std::string wrong = watch_.Look(packet);
  if (wrong.empty()) return;
  damage_.Note(wrong);
  if (policy_ == DamagePolicy::Stop) EndInput();
}

void ClipReader::TakeVideo(const AVPacket& packet, std::int64_t ordinal) {
  if (ordinal < firstPacket_ || ended_) return;
  keySeen_ = keySeen_ || (packet.flags & AV_PKT_FLAG_KEY) != 0;
  if (keySeen_) SendVideo(packet, "video packet " + std::to_string(ordinal));
}

void ClipReader::SendVideo(const AVPacket& packet, const std::string& name) {
  const int result = avcodec_send_packet(decoder_.get(), &packet);
  if (result < 0 && result != AVERROR_EOF) {
    NoteDamageAndStop(name + " cannot be decoded (" + AvErrorText(result) + ")");
  } else if (IsShown(packet)) {
    inFlight_.Send(packet);
  }
}

/// What the decoder holds comes out still.
void ClipReader::EndInput() {
  if (std::exchange(ended_, true)) return;
  avcodec_send_packet(decoder_.get(), nullptr);
}

void ClipReader::FinishInput(int result) {
  EndInput();
  atEnd_ = true;
  const std::string wrong = watch_.LookAtEnd(result);
  if (!wrong.empty()) damage_.Note(wrong);
}

void ClipReader::NoteLost(std::int64_t lost, const std::string& where) {
  const std::int64_t explained = std::min(lost, undecoded_);
  undecoded_ -= explained;
  if (lost == explained) return;
  NoteDamageAndStop(where + " the decoder lost " + Counted(lost - explained, "frame"));
}

void ClipReader::NoteMissing(const AVFrame& frame, std::int64_t number) {
  if (frame.pts == AV_NOPTS_VALUE) return;
  const std::int64_t missing =
      times_.MissingBefore(static_cast<double>(frame.pts) * av_q2d(TimeBase()));
  if (missing == 0) return;
  NoteDamageAndStop("before frame " + std::to_string(number) + " the file lacks " +
                    Counted(missing, "frame"));
}

void ClipReader::NoteDamageAndStop(const std::string& what) {
  damage_.Note(what);
  stopped_ = policy_ == DamagePolicy::Stop;
}

}  // namespace Quillon::Cli
