#include "tools/quillon/video/AvLog.h"

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>

extern "C" {
#include <libavutil/log.h>
}

namespace {

std::atomic<std::int64_t> complaints = 0;
std::mutex lastMutex;
std::string last;

bool IsDecoder(void* context) {
  if (context == nullptr) return false;
  const AVClass* type = *static_cast<AVClass**>(context);
  return type != nullptr && type->get_category != nullptr &&
         type->get_category(context) == AV_CLASS_CATEGORY_DECODER;
}

void OnMessage(void* context, int level, const char* format, va_list arguments) {
  if (level > AV_LOG_ERROR || !IsDecoder(context)) return;
  std::array<char, 256> text{};
  std::vsnprintf(text.data(), text.size(), format, arguments);
  std::string message = text.data();
  while (!message.empty() && message.back() == '\n') message.pop_back();
  const std::lock_guard lock(lastMutex);
  last = std::move(message);
  ++complaints;
}

}  // namespace

void QuietAvLog() {
  av_log_set_callback(OnMessage);
  setenv("SVT_LOG", "0", 0);  // SVT-AV1 has no other way
}

std::int64_t DecoderComplaints() { return complaints; }

std::string LastDecoderComplaint() {
  const std::lock_guard lock(lastMutex);
  return last;
}
