#include "tests/tools/video/ClipFiles.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "refhost/orvmediatypes/H273.h"
#include "tools/quillon/video/ClipInput.h"
#include "tools/quillon/video/ClipReader.h"
#include "tools/quillon/video/ClipWriter.h"

extern "C" {
#include <libavutil/imgutils.h>
}

namespace Quillon::Cli {

namespace fs = std::filesystem;

namespace {

constexpr int kSoundRate = 48000;
constexpr int kSoundSamples = 1024;  // a packet

std::string SamplesOfFrame(const AVFrame& frame) {
  const auto format = static_cast<AVPixelFormat>(frame.format);
  const int size = av_image_get_buffer_size(format, frame.width, frame.height, 1);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  RequireAv(av_image_copy_to_buffer(reinterpret_cast<std::uint8_t*>(bytes.data()), size, frame.data,
                                    frame.linesize, format, frame.width, frame.height, 1),
            "copying samples");
  return bytes;
}

void FillGrey(AVFrame& frame, int code) {
  for (int y = 0; y < frame.height; ++y) {
    auto* row = reinterpret_cast<std::uint16_t*>(frame.data[0] + y * frame.linesize[0]);
    std::fill_n(row, frame.width, static_cast<std::uint16_t>(code));
  }
  for (int plane = 1; plane < 3; ++plane) {
    for (int y = 0; y < (frame.height + 1) / 2; ++y) {
      auto* row = reinterpret_cast<std::uint16_t*>(frame.data[plane] + y * frame.linesize[plane]);
      std::fill_n(row, (frame.width + 1) / 2, std::uint16_t{512});
    }
  }
}

void AddSoundStream(AVFormatContext& container) {
  AVCodecParameters& sound = *avformat_new_stream(&container, nullptr)->codecpar;
  sound.codec_type = AVMEDIA_TYPE_AUDIO;
  sound.codec_id = AV_CODEC_ID_PCM_S16LE;
  sound.format = AV_SAMPLE_FMT_S16;
  sound.sample_rate = kSoundRate;
  av_channel_layout_default(&sound.ch_layout, 1);
  sound.bits_per_coded_sample = 16;
  sound.block_align = 2;
}

void WriteSound(AVFormatContext& container, int number) {
  const AvPacketPtr packet = MakeAvPacket();
  RequireAv(av_new_packet(packet.get(), kSoundSamples * 2), "making sound");
  std::fill_n(packet->data, packet->size, static_cast<std::uint8_t>(number));
  packet->stream_index = 1;
  packet->pts = packet->dts = std::int64_t{number} * kSoundSamples;
  packet->duration = kSoundSamples;
  packet->flags = AV_PKT_FLAG_KEY;
  av_packet_rescale_ts(packet.get(), {1, kSoundRate}, container.streams[1]->time_base);
  RequireAv(av_interleaved_write_frame(&container, packet.get()), "writing sound");
}

void CopyVideo(const ClipInput& input, AVFormatContext& container, int& soundPackets) {
  const AvPacketPtr packet = MakeAvPacket();
  while (ReadPacket(input, *packet) >= 0) {
    if (packet->stream_index != input.video->index) continue;
    const double seconds = static_cast<double>(packet->dts) * av_q2d(input.video->time_base);
    while (soundPackets * double{kSoundSamples} / kSoundRate <= seconds) {
      WriteSound(container, soundPackets++);
    }
    av_packet_rescale_ts(packet.get(), input.video->time_base, container.streams[0]->time_base);
    packet->stream_index = 0;
    RequireAv(av_interleaved_write_frame(&container, packet.get()), "writing video");
  }
}

std::vector<DecodedFrame> DecodeAll(ClipReader& reader) {
  std::vector<DecodedFrame> frames;
  while (const auto frame = reader.Next()) {
    frames.push_back({static_cast<double>(frame->pts) * av_q2d(reader.TimeBase()),
                      SamplesOfFrame(*frame->samples)});
  }
  return frames;
}

}  // namespace

void RequireAv(int result, const char* what) {
  if (result < 0) throw std::runtime_error(std::string(what) + ": " + AvErrorText(result));
}

void AddChapter(AVFormatContext& container, std::int64_t second) {
  container.chapters = static_cast<AVChapter**>(
      av_realloc_array(container.chapters, container.nb_chapters + 1, sizeof(AVChapter*)));
  auto* chapter = static_cast<AVChapter*>(av_mallocz(sizeof(AVChapter)));
  chapter->id = static_cast<std::int64_t>(container.nb_chapters) + 1;
  chapter->time_base = {1, 4};
  chapter->start = second;
  chapter->end = second + 1;
  av_dict_set(&chapter->metadata, "title", second == 0 ? "Day" : "Night", 0);
  container.chapters[container.nb_chapters++] = chapter;
}

fs::path MakeChartClip(const ScratchFolder& folder, const std::string& name,
                       const std::vector<std::string>& options) {
  fs::path path = folder / name;
  std::vector<std::string> words = {"chart", "--video", path};
  words.insert(words.end(), options.begin(), options.end());
  if (std::find(words.begin(), words.end(), "--size") == words.end()) {
    words.insert(words.end(), {"--size", "192x108"});
  }
  const RunResult run = RunQuillon(words);
  if (run.exitCode != 0) throw std::runtime_error(run.err);
  return path;
}

Encoding GreyEncoding() {
  Encoding encoding;
  encoding.codec = VideoCodec::Ffv1;
  encoding.pixelFormat = AV_PIX_FMT_YUV420P10LE;
  encoding.tags.colors.primaries = RefHost::kPrimariesBT2020;
  encoding.tags.colors.transfer = RefHost::kTransferPQ;
  encoding.tags.colors.matrix = AVCOL_SPC_BT2020_NCL;
  encoding.tags.colors.fullRange = false;
  encoding.width = 64;
  encoding.height = 48;
  encoding.timeBase = {1, 24};
  encoding.frameRate = {24, 1};
  return encoding;
}

void WriteGreyClip(const fs::path& path, const Encoding& encoding, int frames, int firstCode) {
  ClipWriter writer(path, encoding, nullptr);
  AvFramePool pool(encoding.pixelFormat, encoding.width, encoding.height);
  for (int i = 0; i < frames; ++i) {
    const auto frame = pool.Take();
    FillGrey(*frame, firstCode + i);
    frame->pts = i;
    writer.WriteFrame(*frame);
  }
  writer.Finish();
}

std::vector<DecodedFrame> DecodeClip(const fs::path& path) {
  ClipReader reader(path);
  auto frames = DecodeAll(reader);
  if (reader.Damage().places > 0) throw std::runtime_error(reader.Damage().first);
  return frames;
}

std::vector<DecodedFrame> DecodePart(const fs::path& path) {
  ClipReader reader(path);
  return DecodeAll(reader);
}

std::vector<std::string> SamplesOf(const std::vector<DecodedFrame>& frames) {
  std::vector<std::string> samples;
  for (const DecodedFrame& frame : frames) samples.push_back(frame.samples);
  return samples;
}

std::vector<double> TimesOf(const std::vector<DecodedFrame>& frames) {
  std::vector<double> times;
  for (const DecodedFrame& frame : frames) times.push_back(frame.seconds);
  return times;
}

std::vector<StreamPacket> PacketsOf(const fs::path& path, AVMediaType type) {
  const ClipInput input = OpenClipInput(path);
  const int stream = av_find_best_stream(input.container.get(), type, -1, -1, nullptr, 0);
  std::vector<StreamPacket> packets;
  const AvPacketPtr packet = MakeAvPacket();
  while (ReadPacket(input, *packet) >= 0) {
    if (packet->stream_index != stream) continue;
    packets.push_back(
        {static_cast<double>(packet->pts) * av_q2d(input.container->streams[stream]->time_base),
         std::string(reinterpret_cast<const char*>(packet->data),
                     static_cast<std::size_t>(packet->size))});
  }
  return packets;
}

void AddSound(const fs::path& from, const fs::path& to) {
  const ClipInput input = OpenClipInput(from);
  AVFormatContext* made = nullptr;
  RequireAv(avformat_alloc_output_context2(&made, nullptr, nullptr, to.c_str()), "making a file");
  const AvOutputPtr container(made);
  RequireAv(avio_open(&made->pb, to.c_str(), AVIO_FLAG_WRITE), "opening a file");
  AVStream* video = avformat_new_stream(made, nullptr);
  RequireAv(avcodec_parameters_copy(video->codecpar, input.video->codecpar), "copying parameters");
  video->time_base = input.video->time_base;
  video->avg_frame_rate = input.video->avg_frame_rate;
  AddSoundStream(*made);
  AddChapter(*made, 0);
  AddChapter(*made, 1);
  av_dict_set(&made->metadata, "title", "A chart with sound", 0);
  RequireAv(avformat_write_header(made, nullptr), "writing the head");
  int soundPackets = 0;
  CopyVideo(input, *made, soundPackets);
  RequireAv(av_write_trailer(made), "writing the end");
}

}  // namespace Quillon::Cli
