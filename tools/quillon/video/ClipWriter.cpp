#include "tools/quillon/video/ClipWriter.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "tools/quillon/io/TargetFile.h"
#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void FailFile(const fs::path& path, int result) {
  const bool memory = result == AVERROR(ENOMEM);
  throw CommandError(ExitCode::CannotWrite,
                     path.string() + ": writing failed (" + AvErrorText(result) + "); " +
                         (memory ? "end other programs, or write a smaller picture"
                                 : "make room on the disk or choose another folder"));
}

AvOutputPtr MakeContainer(const fs::path& path) {
  AVFormatContext* made = nullptr;
  if (avformat_alloc_output_context2(&made, nullptr, nullptr, path.string().c_str()) < 0) {
    throw CommandError(ExitCode::NotSupported,
                       path.string() + ": the extension \"" + LowerCaseExtension(path) +
                           "\" names no clip that is written; choose .mp4, .mov, .mkv or .webm");
  }
  return AvOutputPtr(made);
}

void OpenFile(const fs::path& path, AVFormatContext& container) {
  const int result = avio_open(&container.pb, ("file:" + path.string()).c_str(), AVIO_FLAG_WRITE);
  if (result < 0) FailFile(path, result);
}

AVStream& NewStream(AVFormatContext& container) {
  AVStream* stream = avformat_new_stream(&container, nullptr);
  if (stream == nullptr) throw std::bad_alloc();
  return *stream;
}

/// A stream as it is.
AVStream& CopyStream(const AVStream& from, AVFormatContext& container) {
  AVStream& to = NewStream(container);
  if (avcodec_parameters_copy(to.codecpar, from.codecpar) < 0) throw std::bad_alloc();
  const unsigned tag = to.codecpar->codec_tag;
  if (av_codec_get_id(container.oformat->codec_tag, tag) != to.codecpar->codec_id) {
    to.codecpar->codec_tag = 0;
  }
  to.time_base = from.time_base;
  to.avg_frame_rate = from.avg_frame_rate;
  to.sample_aspect_ratio = from.sample_aspect_ratio;
  to.disposition = from.disposition;
  av_dict_copy(&to.metadata, from.metadata, 0);
  for (int i = 0; i < from.nb_side_data; ++i) {
    const AVPacketSideData& data = from.side_data[i];
    std::uint8_t* bytes = av_stream_new_side_data(&to, data.type, data.size);
    if (bytes == nullptr) throw std::bad_alloc();
    std::copy_n(data.data, data.size, bytes);
  }
  return to;
}

bool IsFragmented(const AVFormatContext& container) {
  const std::string name = container.oformat->name;
  return name == "mp4" || name == "mov";
}

bool IsCover(const AVStream& stream) {
  return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
}

/// FFmpeg decodes covers to learn their size.
bool IsDamagedCover(const AVStream& stream) {
  return IsCover(stream) && (stream.attached_pic.size == 0 || stream.codecpar->width <= 0);
}

/// MP4 holds covers beside its tracks; the other containers hold none.
bool HoldsCover(const AVFormatContext& container, const AVStream& cover) {
  return std::string(container.oformat->name) == "mp4" && !IsDamagedCover(cover) &&
         avformat_query_codec(container.oformat, cover.codecpar->codec_id, FF_COMPLIANCE_NORMAL) ==
             1;
}

/// Makes streams for the covers of a clip. Their pictures, to be written.
std::vector<AvPacketPtr> CopyCovers(const ClipInput& source, AVFormatContext& container) {
  std::vector<AvPacketPtr> covers;
  for (unsigned i = 0; i < source.container->nb_streams; ++i) {
    const AVStream& from = *source.container->streams[i];
    if (!IsCover(from) || !HoldsCover(container, from)) continue;
    AvPacketPtr cover(av_packet_clone(&from.attached_pic));
    if (cover == nullptr) throw std::bad_alloc();
    cover->stream_index = CopyStream(from, container).index;
    cover->pts = cover->dts = 0;
    covers.push_back(std::move(cover));
  }
  return covers;
}

void CopyChapters(const ClipInput& source, AVFormatContext& container) {
  const unsigned count = source.container->nb_chapters;
  if (count == 0) return;
  auto** chapters =
      static_cast<AVChapter**>(av_calloc(count, sizeof(AVChapter*)));  // freed with the container
  if (chapters == nullptr) throw std::bad_alloc();
  container.chapters = chapters;
  for (unsigned i = 0; i < count; ++i) {
    const AVChapter& from = *source.container->chapters[i];
    auto* to = static_cast<AVChapter*>(av_mallocz(sizeof(AVChapter)));
    if (to == nullptr) throw std::bad_alloc();
    chapters[container.nb_chapters++] = to;
    to->id = from.id;
    to->time_base = from.time_base;
    to->start = from.start;
    to->end = from.end;
    av_dict_copy(&to->metadata, from.metadata, 0);
  }
}

/// Time stamps of the video stay exact: movie files count them in units of the file's choice.
void KeepTimeBase(AvOptions& options, const AVFormatContext& container, AVRational timeBase) {
  if (IsFragmented(container)) options.Set("video_track_timescale", std::to_string(timeBase.den));
}

}  // namespace

ClipWriter::ClipWriter(const fs::path& path, const Encoding& encoding, const ClipInput* passOn)
    : path_(path), encoding_(encoding), container_(MakeContainer(path)), packet_(MakeAvPacket()) {
  OpenFile(path_, *container_);
  encoder_ = std::make_unique<Encoder>(
      encoding, (container_->oformat->flags & AVFMT_GLOBALHEADER) != 0, path_);
  video_ = &NewStream(*container_);
  video_->time_base = encoding.timeBase;
  video_->avg_frame_rate = encoding.frameRate;
  video_->sample_aspect_ratio = encoding.sampleAspect;
  if (avcodec_parameters_from_context(video_->codecpar, &encoder_->Context()) < 0)
    throw std::bad_alloc();
  // The tag by which more players take HEVC in movie files.
  if (encoding.codec == VideoCodec::Hevc && IsFragmented(*container_)) {
    video_->codecpar->codec_tag = MKTAG('h', 'v', 'c', '1');
  }
  TagStream(encoding.tags, *video_);
  if (passOn != nullptr) AddPassedStreams(*passOn);
  WriteHeader();
}

ClipWriter::~ClipWriter() = default;

void ClipWriter::AddPassedStreams(const ClipInput& source) {
  source_ = std::string(source.container->url).substr(std::string_view("file:").size());
  av_dict_copy(&container_->metadata, source.container->metadata, 0);
  av_dict_set(&container_->metadata, "encoder", nullptr, 0);
  av_dict_copy(&video_->metadata, source.video->metadata, 0);
  av_dict_set(&video_->metadata, "encoder", nullptr, 0);
  video_->disposition = source.video->disposition;
  std::size_t size = 0;
  const std::uint8_t* matrix =
      av_stream_get_side_data(source.video, AV_PKT_DATA_DISPLAYMATRIX, &size);
  if (matrix != nullptr) {
    std::uint8_t* copy = av_stream_new_side_data(video_, AV_PKT_DATA_DISPLAYMATRIX, size);
    if (copy == nullptr) throw std::bad_alloc();
    std::copy_n(matrix, size, copy);
  }
  streamOf_.assign(source.container->nb_streams, -1);
  for (unsigned i = 0; i < source.container->nb_streams; ++i) {
    const AVStream& from = *source.container->streams[i];
    sourceTimeBases_.push_back(from.time_base);
    if (&from != source.video) AddStream(source, from);
  }
  // Fragments cannot hold them; they come in when the file is written again.
  if (!IsFragmented(*container_)) CopyChapters(source, *container_);
}

void ClipWriter::AddStream(const ClipInput& source, const AVStream& from) {
  const AVCodecID id = from.codecpar->codec_id;
  // Fragments cannot hold them; they come in when the file is written again.
  if (IsCover(from) && HoldsCover(*container_, from)) return;
  const bool secondVideo = from.codecpar->codec_type == AVMEDIA_TYPE_VIDEO && !IsCover(from);
  const bool fits = id != AV_CODEC_ID_NONE && !IsCover(from) &&
                    avformat_query_codec(container_->oformat, id, FF_COMPLIANCE_NORMAL) == 1;
  if (!secondVideo && fits) {
    AVStream& to = CopyStream(from, *container_);
    streamOf_[static_cast<std::size_t>(from.index)] = to.index;
    passedNames_.resize(static_cast<std::size_t>(to.index) + 1);
    passedNames_.back() = NameOfStream(from);
    return;
  }
  // How movie files keep their chapters, which are taken over as such.
  if (from.discard == AVDISCARD_ALL) return;
  const char* type = av_get_media_type_string(from.codecpar->codec_type);
  const char* reason = secondVideo            ? "a second picture, which is not mapped"
                       : IsDamagedCover(from) ? "its picture is damaged"
                                              : "which the output's container does not hold";
  remarks_.push_back("stream " + std::to_string(from.index) + " of " +
                     std::to_string(source.container->nb_streams) + " (" +
                     (type != nullptr ? type : "unknown") + ", " + avcodec_get_name(id) +
                     ") is left out: " + reason);
}

void ClipWriter::WriteHeader() {
  AvOptions options;
  KeepTimeBase(options, *container_, encoding_.timeBase);
  if (IsFragmented(*container_)) {
    options.Set("movflags", "frag_keyframe+delay_moov+default_base_moof");
  }
  container_->flags |= AVFMT_FLAG_FLUSH_PACKETS;
  container_->error_recognition |= AV_EF_EXPLODE;  // else filters drop packets without a word
  const int result = avformat_write_header(container_.get(), options.Address());
  if (container_->pb->error < 0) FailWriting(container_->pb->error);
  if (result == AVERROR(ENOMEM)) FailWriting(result);
  if (result < 0 && !passedNames_.empty()) {
    throw CommandError(ExitCode::CannotRead,
                       source_ + ": a stream beside its pictures cannot be passed on (" +
                           AvErrorText(result) +
                           "); check that the clip is whole, or take that stream out of it");
  }
  if (result < 0) {
    throw CommandError(ExitCode::NotSupported, path_.string() +
                                                   ": the container does not take these streams (" +
                                                   AvErrorText(result) + "); name the output .mkv");
  }
  // Fragments turn it off; AAC of a transport stream needs it.
  container_->flags |= AVFMT_FLAG_AUTO_BSF;
  open_ = true;
}

void ClipWriter::FailWriting(int result) {
  failed_ = true;
  FailFile(path_, result);
}

void ClipWriter::WriteFrame(AVFrame& frame) {
  frame.pict_type = AV_PICTURE_TYPE_NONE;
  encoder_->Send(&frame);
  Drain();
}

void ClipWriter::Drain() {
  while (encoder_->Receive(*packet_)) {
    if (packet_->duration == 0 && encoding_.frameRate.num > 0) {
      packet_->duration = av_rescale_q(1, av_inv_q(encoding_.frameRate), encoding_.timeBase);
    }
    WriteEncoded(*packet_, encoder_->Context().time_base);
    av_packet_unref(packet_.get());
  }
}

void ClipWriter::WriteEncoded(const AVPacket& packet, AVRational timeBase) {
  const AvPacketPtr copy(av_packet_clone(&packet));
  if (copy == nullptr) throw std::bad_alloc();
  copy->stream_index = video_->index;
  av_packet_rescale_ts(copy.get(), timeBase, video_->time_base);
  // An encoder that begins anew in the middle counts its decoding times anew, too.
  if (lastDts_ && copy->dts <= *lastDts_) copy->dts = std::min(*lastDts_ + 1, copy->pts);
  lastDts_ = copy->dts;
  Mux(copy.get());
  ++framesWritten_;
}

void ClipWriter::PassOn(const AVPacket& packet) {
  const auto from = static_cast<std::size_t>(packet.stream_index);
  if (from >= streamOf_.size() || streamOf_[from] < 0) return;
  const AvPacketPtr copy(av_packet_clone(&packet));
  if (copy == nullptr) throw std::bad_alloc();
  copy->stream_index = streamOf_[from];
  copy->pos = -1;
  av_packet_rescale_ts(copy.get(), sourceTimeBases_[from],
                       container_->streams[copy->stream_index]->time_base);
  passed_.Add(*container_, *copy);
  Mux(copy.get());
}

/// Null: all that waits for packets of other streams.
void ClipWriter::Mux(AVPacket* packet) {
  int result = -1;
  do {
    result = av_interleaved_write_frame(container_.get(), packet);
    if (container_->pb->error < 0) FailWriting(container_->pb->error);
    if (result < 0) Refuse(result);
  } while (result < 0 && packet == nullptr);
}

/// A muxer also says what it thinks of a packet that came before and waited.
void ClipWriter::Refuse(int result) {
  const bool ofContent = result == AVERROR_INVALIDDATA || result == AVERROR(EINVAL) ||
                         result == AVERROR(EPERM) || result == AVERROR_PATCHWELCOME;
  const int stream = ofContent ? passed_.FindRefused(*container_) : -1;
  if (stream < 0) FailWriting(result);
  refused_.Note("a packet of " + passedNames_[static_cast<std::size_t>(stream)] +
                " does not fit the output's container (" + AvErrorText(result) + ")");
}

void ClipWriter::Flush() {
  encoder_->Send(nullptr);
  Drain();
  Mux(nullptr);
}

void ClipWriter::Finish() {
  Flush();
  Abandon();
}

void ClipWriter::Abandon() {
  if (!std::exchange(open_, false)) return;
  Mux(nullptr);
  const int result = av_write_trailer(container_.get());
  if (result < 0) FailWriting(result);
  avio_flush(container_->pb);
  if (container_->pb->error < 0) FailWriting(container_->pb->error);
}

bool NeedsRewriting(const fs::path& path) {
  const AVOutputFormat* format = av_guess_format(nullptr, path.string().c_str(), nullptr);
  return format != nullptr &&
         (std::string(format->name) == "mp4" || std::string(format->name) == "mov");
}

void RewriteClip(const fs::path& from, const fs::path& to, const ClipInput* passOn) {
  const ClipInput source = OpenClipInput(from);
  const AvOutputPtr container = MakeContainer(to);
  av_dict_copy(&container->metadata, source.container->metadata, 0);
  if (passOn != nullptr) CopyChapters(*passOn, *container);
  for (unsigned i = 0; i < source.container->nb_streams; ++i) {
    CopyStream(*source.container->streams[i], *container);
  }
  std::vector<AvPacketPtr> covers;
  if (passOn != nullptr) covers = CopyCovers(*passOn, *container);
  AvOptions options;
  KeepTimeBase(options, *container, source.video->time_base);
  OpenFile(to, *container);
  int result = avformat_write_header(container.get(), options.Address());
  for (std::size_t i = 0; result >= 0 && i < covers.size(); ++i) {
    result = av_interleaved_write_frame(container.get(), covers[i].get());
  }
  const AvPacketPtr packet = MakeAvPacket();
  while (result >= 0 && ReadPacket(source, *packet) >= 0) {
    const AVStream& in = *source.container->streams[packet->stream_index];
    const AVStream& out = *container->streams[packet->stream_index];
    av_packet_rescale_ts(packet.get(), in.time_base, out.time_base);
    packet->pos = -1;
    result = av_interleaved_write_frame(container.get(), packet.get());
  }
  if (result >= 0) result = av_write_trailer(container.get());
  avio_flush(container->pb);
  if (result >= 0) result = container->pb->error;
  if (result < 0) FailFile(to, result);
}

}  // namespace Quillon::Cli
