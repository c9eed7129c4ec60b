#include "tools/quillon/video/AvHandles.h"

#include <array>
#include <new>

namespace Quillon::Cli {

void CloseAvOutput::operator()(AVFormatContext* context) const {
  if (context == nullptr) return;
  avio_closep(&context->pb);
  avformat_free_context(context);
}

AvFramePtr MakeAvFrame() {
  AvFramePtr frame(av_frame_alloc());
  if (frame == nullptr) throw std::bad_alloc();
  return frame;
}

AvPacketPtr MakeAvPacket() {
  AvPacketPtr packet(av_packet_alloc());
  if (packet == nullptr) throw std::bad_alloc();
  return packet;
}

std::string AvErrorText(int code) {
  std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
  av_strerror(code, text.data(), text.size());
  return text.data();
}

}  // namespace Quillon::Cli
