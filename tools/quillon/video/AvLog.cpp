#include "tools/quillon/video/AvLog.h"

#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/log.h>
}

namespace Quillon::Cli {

namespace {

/// Who wants to know of a message; null: nobody.
AvComplaints* ListenerOf(void* context) {
  if (context == nullptr) return nullptr;
  const AVClass* type = *static_cast<AVClass**>(context);
  if (type == nullptr || type->get_category == nullptr) return nullptr;
  const AVClassCategory category = type->get_category(context);
  const std::string_view name = type->class_name;
  // Threads of a decoder have contexts of their own, with the same `opaque`.
  if (category == AV_CLASS_CATEGORY_DECODER && name == "AVCodecContext") {
    return static_cast<AvComplaints*>(static_cast<AVCodecContext*>(context)->opaque);
  }
  if (category == AV_CLASS_CATEGORY_DEMUXER && name == "AVFormatContext") {
    return static_cast<AvComplaints*>(static_cast<AVFormatContext*>(context)->opaque);
  }
  return nullptr;
}

/// Packets of a transport stream are missing, which FFmpeg does not call an error.
bool TellsOfAGap(std::string_view format) { return format.starts_with("Continuity check failed"); }

void OnMessage(void* context, int level, const char* format, va_list arguments) {
  if (level > AV_LOG_ERROR && !TellsOfAGap(format)) return;
  AvComplaints* listener = ListenerOf(context);
  if (listener == nullptr) return;
  std::array<char, 256> text{};
  std::vsnprintf(text.data(), text.size(), format, arguments);
  listener->Add(text.data());
}

}  // namespace

void QuietAvLog() {
  av_log_set_callback(OnMessage);
  setenv("SVT_LOG", "0", 0);  // SVT-AV1 has no other way
}

void AvComplaints::Add(std::string message) {
  while (!message.empty() && (message.back() == '\n' || message.back() == '.')) message.pop_back();
  const std::lock_guard lock(mutex_);
  last_ = std::move(message);
  ++count_;
}

std::int64_t AvComplaints::Count() const {
  const std::lock_guard lock(mutex_);
  return count_;
}

std::string AvComplaints::Last() const {
  const std::lock_guard lock(mutex_);
  return last_;
}

}  // namespace Quillon::Cli
