#pragma once

#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/error.h>
#include <libavutil/frame.h>
}

namespace Quillon::Cli {

/// Owners of FFmpeg's objects, and what its libraries have no C++ form for.

struct FreeAvFrame {
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
using AvFramePtr = std::unique_ptr<AVFrame, FreeAvFrame>;

struct FreeAvPacket {
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
using AvPacketPtr = std::unique_ptr<AVPacket, FreeAvPacket>;

struct FreeAvCodec {
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
using AvCodecPtr = std::unique_ptr<AVCodecContext, FreeAvCodec>;

struct CloseAvInput {
  void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
using AvInputPtr = std::unique_ptr<AVFormatContext, CloseAvInput>;

struct CloseAvOutput {
  void operator()(AVFormatContext* context) const;
};
using AvOutputPtr = std::unique_ptr<AVFormatContext, CloseAvOutput>;

struct FreeAvBufferPool {
  void operator()(AVBufferPool* pool) const { av_buffer_pool_uninit(&pool); }
};
using AvBufferPoolPtr = std::unique_ptr<AVBufferPool, FreeAvBufferPool>;

/// Throws std::bad_alloc where there is no memory.
AvFramePtr MakeAvFrame();
AvPacketPtr MakeAvPacket();

/// FFmpeg's words for a result code.
std::string AvErrorText(int code);

/// Options for one call of FFmpeg; it takes those that it knows out of them.
class AvOptions {
 public:
  AvOptions() = default;
  ~AvOptions() { av_dict_free(&dictionary_); }
  AvOptions(const AvOptions&) = delete;
  AvOptions& operator=(const AvOptions&) = delete;

  void Set(const char* name, const std::string& value) {
    av_dict_set(&dictionary_, name, value.c_str(), 0);
  }
  AVDictionary** Address() { return &dictionary_; }

 private:
  AVDictionary* dictionary_ = nullptr;
};

}  // namespace Quillon::Cli
