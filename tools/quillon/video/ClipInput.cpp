#include "tools/quillon/video/ClipInput.h"

#include <system_error>

#include "tools/quillon/ExitCodes.h"

namespace fs = std::filesystem;

namespace {

/// FFmpeg would take names such as "http:" for protocols.
std::string FileUrl(const fs::path& path) { return "file:" + path.string(); }

}  // namespace

void RequireClipFile(const fs::path& path) {
  std::error_code error;
  if (!fs::exists(path, error)) {
    throw CommandError(ExitCode::CannotRead, path.string() +
                                                 ": there is no such file; check the "
                                                 "name");
  }
  if (!fs::is_regular_file(path, error)) {
    throw CommandError(ExitCode::CannotRead, path.string() + ": it is no plain file; name a clip");
  }
}

ClipInput OpenClipInput(const fs::path& path) {
  RequireClipFile(path);
  AVFormatContext* opened = nullptr;
  const int result = avformat_open_input(&opened, FileUrl(path).c_str(), nullptr, nullptr);
  if (result == AVERROR_EOF) {
    throw CommandError(ExitCode::CannotRead,
                       path.string() + ": it has no frames; check that it is whole");
  }
  if (result < 0) {
    throw CommandError(ExitCode::CannotRead,
                       path.string() + ": it is no picture and no clip that can be read (" +
                           AvErrorText(result) + "); check that it is whole");
  }
  ClipInput input;
  input.container.reset(opened);
  if (avformat_find_stream_info(opened, nullptr) < 0) {
    throw CommandError(ExitCode::CannotRead,
                       path.string() + ": its streams cannot be made out; check that it is whole");
  }
  const int index = av_find_best_stream(opened, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
  if (index < 0 || (opened->streams[index]->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0) {
    throw CommandError(ExitCode::CannotRead, path.string() + ": it holds no video; name a clip");
  }
  input.video = opened->streams[index];
  return input;
}

int ReadPacket(const ClipInput& input, AVPacket& packet) {
  av_packet_unref(&packet);
  int result = AVERROR(EAGAIN);
  while (result == AVERROR(EAGAIN)) result = av_read_frame(input.container.get(), &packet);
  return result;
}
