#include "tools/quillon/video/ClipInput.h"

#include <new>
#include <system_error>
#include <vector>

#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

namespace fs = std::filesystem;

namespace {

/// FFmpeg would take names such as "http:" for protocols.
std::string FileUrl(const fs::path& path) { return "file:" + path.string(); }

[[noreturn]] void Fail(const fs::path& path, const std::string& sentence) {
  throw CommandError(ExitCode::CannotRead, path.string() + ": " + sentence);
}

void OpenContainer(const fs::path& path, ClipInput& input) {
  AVFormatContext* opened = avformat_alloc_context();
  if (opened == nullptr) throw std::bad_alloc();
  opened->opaque = input.complaints.get();
  const int result = avformat_open_input(&opened, FileUrl(path).c_str(), nullptr, nullptr);
  if (result == AVERROR_EOF) Fail(path, "it has no frames; check that it is whole");
  if (result < 0) {
    Fail(path, "it is no picture and no clip that can be read (" + AvErrorText(result) +
                   "); check that it is whole");
  }
  input.container.reset(opened);
}

void CheckSizes(const fs::path& path, const AVFormatContext& container, std::int64_t maxPixels) {
  for (unsigned i = 0; i < container.nb_streams; ++i) {
    const AVCodecParameters& parameters = *container.streams[i]->codecpar;
    if (parameters.codec_type != AVMEDIA_TYPE_VIDEO) continue;
    if (std::int64_t{parameters.width} * parameters.height <= maxPixels) continue;
    throw CommandError(ExitCode::NotSupported,
                       path.string() + ": a picture of " + std::to_string(parameters.width) + "x" +
                           std::to_string(parameters.height) + " pixels is beyond the limit of " +
                           std::to_string(maxPixels) + "; scale it down or raise --max-pixels");
  }
}

/// Finds out what the container does not tell; FFmpeg decodes a few frames for that.
void ProbeStreams(const fs::path& path, AVFormatContext& container, std::int64_t maxPixels) {
  std::vector<AvOptions> options(container.nb_streams);
  std::vector<AVDictionary*> dictionaries;
  for (AvOptions& one : options) {
    one.Set("max_pixels", std::to_string(maxPixels));
    dictionaries.push_back(*one.Address());
  }
  const int result = avformat_find_stream_info(&container, dictionaries.data());
  for (std::size_t i = 0; i < options.size(); ++i) *options[i].Address() = dictionaries[i];
  if (result < 0) Fail(path, "its streams cannot be made out; check that it is whole");
}

}  // namespace

void RequireClipFile(const fs::path& path) {
  std::error_code error;
  if (!fs::exists(path, error)) Fail(path, "there is no such file; check the name");
  if (!fs::is_regular_file(path, error)) Fail(path, "it is no plain file; name a clip");
}

ClipInput OpenClipInput(const fs::path& path, std::int64_t maxPixels) {
  RequireClipFile(path);
  ClipInput input;
  input.complaints = std::make_unique<AvComplaints>();
  OpenContainer(path, input);
  AVFormatContext& container = *input.container;
  CheckSizes(path, container, maxPixels);
  ProbeStreams(path, container, maxPixels);
  CheckSizes(path, container, maxPixels);
  const int index = av_find_best_stream(&container, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
  if (index < 0 || (container.streams[index]->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0) {
    Fail(path, "it holds no video; name a clip");
  }
  input.video = container.streams[index];
  return input;
}

int ReadPacket(const ClipInput& input, AVPacket& packet) {
  // A container that asks for another try for ever is at its end.
  constexpr int kTries = 1000;
  av_packet_unref(&packet);
  for (int i = 0; i < kTries; ++i) {
    const int result = av_read_frame(input.container.get(), &packet);
    if (result != AVERROR(EAGAIN)) return result;
  }
  return AVERROR_INVALIDDATA;
}

bool CanBeginAnywhere(const ClipInput& input) {
  return (input.container->iformat->flags & (AVFMT_TS_DISCONT | AVFMT_NOTIMESTAMPS)) != 0;
}

std::string NameOfStream(const AVStream& stream) {
  const char* type = av_get_media_type_string(stream.codecpar->codec_type);
  return "stream " + std::to_string(stream.index) + " (" + (type != nullptr ? type : "unknown") +
         ", " + avcodec_get_name(stream.codecpar->codec_id) + ")";
}

}  // namespace Quillon::Cli
