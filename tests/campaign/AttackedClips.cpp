#include "tests/campaign/AttackedClips.h"

#include <algorithm>
#include <stdexcept>

#include "tests/campaign/Attack.h"
#include "tests/tools/RunQuillon.h"
#include "tests/tools/video/ClipFiles.h"
#include "tests/tools/video/FullClips.h"
#include "tools/quillon/video/ClipInput.h"
#include "tools/quillon/video/ClipReader.h"
#include "tools/quillon/video/ClipWriter.h"

using namespace Quillon::Cli;

namespace fs = std::filesystem;

namespace {

constexpr const char* kFrames = "48";

std::vector<PacketPlace> PlacesOf(const fs::path& path) {
  const ClipInput input = OpenClipInput(path);
  const AvPacketPtr packet = MakeAvPacket();
  std::vector<PacketPlace> places;
  while (ReadPacket(input, *packet) >= 0) {
    if (packet->pos < 0 || packet->size == 0) continue;
    places.push_back({static_cast<std::size_t>(packet->pos), static_cast<std::size_t>(packet->size),
                      packet->stream_index == input.video->index});
  }
  return places;
}

AttackedClip Attacked(const fs::path& path) {
  AttackedClip clip;
  clip.name = path.filename();
  clip.bytes = ReadFile(path);
  clip.frames = DecodeClip(path).size();
  clip.packets = PlacesOf(path);
  if (clip.frames == 0 || clip.packets.empty()) throw std::runtime_error(clip.name + " is empty");
  return clip;
}

/// The chart in another codec, still HDR10.
fs::path Encoded(const ScratchFolder& folder, const std::string& codec,
                 const std::string& extension) {
  const fs::path path = folder / ("plain-" + codec + extension);
  MustRun({"map", "--overwrite", "--to", "bt2100-pq", "--target-peak", "1000", "--codec", codec,
           folder / "chart.mp4", path});
  return path;
}

/// The chart in VP9, which is read and not written.
fs::path EncodedAsVp9(const ScratchFolder& folder) {
  fs::path path = folder / "plain-vp9.webm";
  ClipReader reader(folder / "chart.mp4");
  const AVCodec* codec = avcodec_find_encoder_by_name("libvpx-vp9");
  if (codec == nullptr) throw std::runtime_error("there is no encoder for VP9");
  const AvCodecPtr encoder(avcodec_alloc_context3(codec));
  encoder->width = reader.Info().width;
  encoder->height = reader.Info().height;
  encoder->pix_fmt = AV_PIX_FMT_YUV420P10LE;
  encoder->time_base = reader.TimeBase();
  encoder->framerate = reader.Info().frameRate;
  encoder->color_primaries = AVCOL_PRI_BT2020;
  encoder->color_trc = AVCOL_TRC_SMPTE2084;
  encoder->colorspace = AVCOL_SPC_BT2020_NCL;
  encoder->gop_size = 24;
  AvOptions options;
  options.Set("deadline", "realtime");
  options.Set("cpu-used", "8");
  RequireAv(avcodec_open2(encoder.get(), codec, options.Address()), "opening VP9");

  AVFormatContext* made = nullptr;
  RequireAv(avformat_alloc_output_context2(&made, nullptr, nullptr, path.c_str()), "making a file");
  const AvOutputPtr container(made);
  RequireAv(avio_open(&made->pb, path.c_str(), AVIO_FLAG_WRITE), "opening a file");
  AVStream* stream = avformat_new_stream(made, nullptr);
  stream->time_base = encoder->time_base;
  stream->avg_frame_rate = encoder->framerate;
  RequireAv(avcodec_parameters_from_context(stream->codecpar, encoder.get()), "parameters");
  RequireAv(avformat_write_header(made, nullptr), "writing the head");
  const AvPacketPtr packet = MakeAvPacket();
  const auto drain = [&] {
    while (avcodec_receive_packet(encoder.get(), packet.get()) >= 0) {
      av_packet_rescale_ts(packet.get(), encoder->time_base, stream->time_base);
      RequireAv(av_interleaved_write_frame(made, packet.get()), "writing a packet");
    }
  };
  while (const auto frame = reader.Next()) {
    const AvFramePtr copy(av_frame_clone(frame->samples.get()));
    copy->pict_type = AV_PICTURE_TYPE_NONE;
    RequireAv(avcodec_send_frame(encoder.get(), copy.get()), "encoding");
    drain();
  }
  RequireAv(avcodec_send_frame(encoder.get(), nullptr), "encoding");
  drain();
  RequireAv(av_write_trailer(made), "writing the end");
  return path;
}

/// A stream without a container.
fs::path RawStream(const ScratchFolder& folder, const std::string& codec) {
  const fs::path ts = folder / ("raw-" + codec + ".ts");
  AddEverything(Encoded(folder, codec, ".mkv"), ts);
  std::string bytes;
  for (const StreamPacket& packet : PacketsOf(ts, AVMEDIA_TYPE_VIDEO)) bytes += packet.bytes;
  fs::path path = folder / ("raw." + codec);
  WriteFile(path, bytes);
  return path;
}

}  // namespace

std::vector<AttackedClip> MakeAttackedClips(const ScratchFolder& folder) {
  MustRun({"chart", "--video", "--frames", kFrames, "--size", "128x72", folder / "chart.mp4"});
  std::vector<AttackedClip> clips;
  const auto add = [&](const fs::path& video, const std::string& name) {
    AddEverything(video, folder / name);
    clips.push_back(Attacked(folder / name));
  };
  add(folder / "chart.mp4", "hevc.mp4");
  add(folder / "chart.mp4", "hevc.mkv");
  add(folder / "chart.mp4", "hevc.mov");
  add(folder / "chart.mp4", "hevc.ts");
  const fs::path h264 = Encoded(folder, "h264", ".mkv");
  for (const char* name : {"h264.mp4", "h264.mkv", "h264.ts"}) add(h264, name);
  const fs::path av1 = Encoded(folder, "av1", ".mkv");
  for (const char* name : {"av1.webm", "av1.mkv", "av1.mp4"}) add(av1, name);
  add(Encoded(folder, "ffv1", ".mkv"), "ffv1.mkv");
  add(Encoded(folder, "prores", ".mov"), "prores.mov");
  const fs::path vp9 = EncodedAsVp9(folder);
  for (const char* name : {"vp9.webm", "vp9.mkv"}) add(vp9, name);
  clips.push_back(Attacked(RawStream(folder, "h264")));
  clips.push_back(Attacked(RawStream(folder, "hevc")));
  return clips;
}
