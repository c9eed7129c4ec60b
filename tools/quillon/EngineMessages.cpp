#include "tools/quillon/EngineMessages.h"

#include <mutex>
#include <string_view>

#include "base/Trace.h"
#include "refhost/orvcore/TraceSettings.h"

struct EngineMessages::Log {
  std::mutex mutex;
  std::string text;
};

EngineMessages::EngineMessages() : log_(std::make_shared<Log>()) {
  orvcore::debug::SetTraceSink(
      [log = log_](int /*level*/, std::string_view /*category*/, std::string_view message) {
        const std::lock_guard lock(log->mutex);
        if (!log->text.empty()) log->text += "; ";
        log->text += message.substr(0, message.find_last_not_of("\r\n") + 1);
      });
  orvcore::debug::SetTraceLevel(Quillon::kTraceLevel);
}

EngineMessages::~EngineMessages() {
  orvcore::debug::SetTraceLevel(0);
  orvcore::debug::SetTraceSink({});
}

std::string EngineMessages::Joined() const {
  const std::lock_guard lock(log_->mutex);
  return log_->text;
}
