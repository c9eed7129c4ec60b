#include "tests/tools/video/FullClips.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>
#include <vector>

#include "tests/tools/video/ClipFiles.h"
#include "tools/quillon/video/ClipInput.h"
#include "tools/quillon/video/ClipWriter.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;

namespace {

constexpr int kSoundRate = 48000;
constexpr double kPi = 3.14159265358979;

AVStream& NewStream(AVFormatContext& container) {
  AVStream* stream = avformat_new_stream(&container, nullptr);
  if (stream == nullptr) throw std::bad_alloc();
  return *stream;
}

AvPacketPtr PacketOf(const std::string& bytes) {
  AvPacketPtr packet = MakeAvPacket();
  RequireAv(av_new_packet(packet.get(), static_cast<int>(bytes.size())), "making a packet");
  std::copy(bytes.begin(), bytes.end(), packet->data);
  packet->flags = AV_PKT_FLAG_KEY;
  return packet;
}

void SetExtradata(AVCodecParameters& parameters, const std::string& bytes) {
  parameters.extradata =
      static_cast<std::uint8_t*>(av_mallocz(bytes.size() + AV_INPUT_BUFFER_PADDING_SIZE));
  parameters.extradata_size = static_cast<int>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), parameters.extradata);
}

AvCodecPtr OpenSoundEncoder(bool webm, bool globalHeader) {
  const AVCodec* codec = avcodec_find_encoder(webm ? AV_CODEC_ID_OPUS : AV_CODEC_ID_AAC);
  AvCodecPtr encoder(avcodec_alloc_context3(codec));
  encoder->sample_fmt = webm ? AV_SAMPLE_FMT_FLT : AV_SAMPLE_FMT_FLTP;
  encoder->sample_rate = kSoundRate;
  encoder->bit_rate = 64000;
  encoder->time_base = {1, kSoundRate};
  av_channel_layout_default(&encoder->ch_layout, 1);
  if (globalHeader) encoder->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
  RequireAv(avcodec_open2(encoder.get(), codec, nullptr), "opening the encoder of sound");
  return encoder;
}

/// A tone; one channel lies alike in both sample formats.
AvFramePtr Tone(const AVCodecContext& encoder, std::int64_t from) {
  AvFramePtr frame = MakeAvFrame();
  frame->format = encoder.sample_fmt;
  frame->nb_samples = encoder.frame_size;
  frame->sample_rate = kSoundRate;
  frame->pts = from;
  av_channel_layout_default(&frame->ch_layout, 1);
  RequireAv(av_frame_get_buffer(frame.get(), 0), "making sound");
  auto* samples = reinterpret_cast<float*>(frame->data[0]);
  for (int i = 0; i < frame->nb_samples; ++i) {
    samples[i] =
        0.3F * static_cast<float>(std::sin(2.0 * kPi * 440.0 * double(from + i) / kSoundRate));
  }
  return frame;
}

std::vector<AvPacketPtr> EncodeAll(AVCodecContext& encoder, std::vector<AvFramePtr> frames) {
  frames.push_back(nullptr);
  std::vector<AvPacketPtr> packets;
  for (const AvFramePtr& frame : frames) {
    RequireAv(avcodec_send_frame(&encoder, frame.get()), "encoding");
    AvPacketPtr packet = MakeAvPacket();
    while (avcodec_receive_packet(&encoder, packet.get()) >= 0) {
      packets.push_back(std::exchange(packet, MakeAvPacket()));
    }
  }
  return packets;
}

/// What a stream is to hold, in the order of time.
struct AddedStream {
  AVStream* stream = nullptr;
  AVRational timeBase{1, 1000};
  std::vector<AvPacketPtr> packets;
  std::size_t written = 0;
};

AddedStream AddSound(AVFormatContext& container, bool webm, double seconds) {
  const bool globalHeader = (container.oformat->flags & AVFMT_GLOBALHEADER) != 0;
  const AvCodecPtr encoder = OpenSoundEncoder(webm, globalHeader);
  AddedStream added{&NewStream(container), encoder->time_base, {}, 0};
  RequireAv(avcodec_parameters_from_context(added.stream->codecpar, encoder.get()), "sound");
  std::vector<AvFramePtr> frames;
  for (std::int64_t at = 0; static_cast<double>(at) < seconds * kSoundRate;
       at += encoder->frame_size) {
    frames.push_back(Tone(*encoder, at));
  }
  added.packets = EncodeAll(*encoder, std::move(frames));
  return added;
}

/// How tx3g text looks by default: box, colours, and one font.
std::string TextDescription() {
  std::string bytes(18 + 12, '\0');
  bytes[4] = 1;  // centred
  bytes[5] = static_cast<char>(0xFF);
  bytes[23] = 1;  // font
  bytes[25] = 18;
  bytes.replace(26, 4, "\xFF\xFF\xFF\xFF");
  return bytes + std::string(
                     "\0\0\0\x12"
                     "ftab\0\x01\0\x01\x05Serif",
                     18);
}

AddedStream AddSubtitles(AVFormatContext& container, AVCodecID codec, double seconds) {
  AddedStream added{&NewStream(container), {1, 1000}, {}, 0};
  added.stream->codecpar->codec_type = AVMEDIA_TYPE_SUBTITLE;
  added.stream->codecpar->codec_id = codec;
  added.stream->time_base = added.timeBase;
  const bool sized = codec == AV_CODEC_ID_MOV_TEXT;
  if (sized) SetExtradata(*added.stream->codecpar, TextDescription());
  for (int i = 0; i < seconds * 2; ++i) {
    const std::string text = "Line " + std::to_string(i);
    const std::string head = {'\0', static_cast<char>(text.size())};
    AvPacketPtr packet = PacketOf(sized ? head + text : text);
    packet->pts = packet->dts = i * 500;
    packet->duration = 400;
    added.packets.push_back(std::move(packet));
  }
  return added;
}

void AddFont(AVFormatContext& container) {
  AVStream& stream = NewStream(container);
  stream.codecpar->codec_type = AVMEDIA_TYPE_ATTACHMENT;
  stream.codecpar->codec_id = AV_CODEC_ID_TTF;
  SetExtradata(*stream.codecpar, std::string("\0\1\0\0", 4) + std::string(3000, 'f'));
  av_dict_set(&stream.metadata, "filename", "serif.ttf", 0);
  av_dict_set(&stream.metadata, "mimetype", "application/x-truetype-font", 0);
}

AddedStream AddCover(AVFormatContext& container) {
  const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_PNG);
  const AvCodecPtr encoder(avcodec_alloc_context3(codec));
  encoder->width = encoder->height = 16;
  encoder->pix_fmt = AV_PIX_FMT_RGB24;
  encoder->time_base = {1, 1};
  RequireAv(avcodec_open2(encoder.get(), codec, nullptr), "opening the encoder of covers");
  AvFramePtr frame = MakeAvFrame();
  frame->width = frame->height = 16;
  frame->format = AV_PIX_FMT_RGB24;
  frame->pts = 0;
  RequireAv(av_frame_get_buffer(frame.get(), 0), "making a cover");
  std::fill_n(frame->data[0], frame->linesize[0] * 16, std::uint8_t{90});
  AddedStream added{&NewStream(container), encoder->time_base, {}, 0};
  RequireAv(avcodec_parameters_from_context(added.stream->codecpar, encoder.get()), "a cover");
  added.stream->disposition = AV_DISPOSITION_ATTACHED_PIC;
  std::vector<AvFramePtr> frames;
  frames.push_back(std::move(frame));
  added.packets = EncodeAll(*encoder, std::move(frames));
  return added;
}

std::vector<AddedStream> AddStreams(AVFormatContext& container, const std::string& extension,
                                    double seconds) {
  std::vector<AddedStream> added;
  added.push_back(AddSound(container, extension == ".webm", seconds));
  if (extension != ".ts") {
    const AVCodecID subtitles = extension == ".mkv"    ? AV_CODEC_ID_SUBRIP
                                : extension == ".webm" ? AV_CODEC_ID_WEBVTT
                                                       : AV_CODEC_ID_MOV_TEXT;
    added.push_back(AddSubtitles(container, subtitles, seconds));
  }
  if (extension == ".mkv") AddFont(container);
  if (extension == ".mp4") added.push_back(AddCover(container));
  AddChapter(container, 0);
  AddChapter(container, 1);
  return added;
}

void WriteUpTo(AVFormatContext& container, AddedStream& added, double seconds) {
  for (; added.written < added.packets.size(); ++added.written) {
    AVPacket& packet = *added.packets[added.written];
    if (static_cast<double>(packet.dts) * av_q2d(added.timeBase) > seconds) return;
    av_packet_rescale_ts(&packet, added.timeBase, added.stream->time_base);
    packet.stream_index = added.stream->index;
    RequireAv(av_interleaved_write_frame(&container, &packet), "writing what is added");
  }
}

double SecondsOf(const fs::path& path) {
  const ClipInput input = OpenClipInput(path);
  return static_cast<double>(input.container->duration) / AV_TIME_BASE;
}

}  // namespace

void AddEverything(const fs::path& from, const fs::path& to) {
  const ClipInput input = OpenClipInput(from);
  AVFormatContext* made = nullptr;
  RequireAv(avformat_alloc_output_context2(&made, nullptr, nullptr, to.c_str()), "making a file");
  const AvOutputPtr container(made);
  RequireAv(avio_open(&made->pb, to.c_str(), AVIO_FLAG_WRITE), "opening a file");
  AVStream& video = NewStream(*made);
  RequireAv(avcodec_parameters_copy(video.codecpar, input.video->codecpar), "copying parameters");
  video.codecpar->codec_tag = 0;
  video.time_base = input.video->time_base;
  video.avg_frame_rate = input.video->avg_frame_rate;
  auto added = AddStreams(*made, to.extension(), SecondsOf(from));
  RequireAv(avformat_write_header(made, nullptr), "writing the head");
  const AvPacketPtr packet = MakeAvPacket();
  while (ReadPacket(input, *packet) >= 0) {
    const double seconds = static_cast<double>(packet->dts) * av_q2d(input.video->time_base);
    for (AddedStream& stream : added) WriteUpTo(*made, stream, seconds);
    av_packet_rescale_ts(packet.get(), input.video->time_base, video.time_base);
    packet->stream_index = video.index;
    packet->pos = -1;
    RequireAv(av_interleaved_write_frame(made, packet.get()), "writing video");
  }
  for (AddedStream& stream : added) WriteUpTo(*made, stream, 1e9);
  RequireAv(av_write_trailer(made), "writing the end");
}

fs::path MakeClipWithEverything(const ScratchFolder& folder, const std::string& name, int frames) {
  fs::path plain =
      MakeChartClip(folder, "plain-" + name + ".mp4", {"--frames", std::to_string(frames)});
  fs::path path = folder / name;
  if (path.extension() == ".webm") {
    const fs::path av1 = folder / ("plain-" + name);
    const RunResult run =
        RunQuillon({"map", "--to", "bt2100-pq", "--codec", "av1", "--preset", "12", plain, av1});
    if (run.exitCode != 0) throw std::runtime_error(run.err);
    fs::remove(std::exchange(plain, av1));
  }
  AddEverything(plain, path);
  fs::remove(plain);
  return path;
}
