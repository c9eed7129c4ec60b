#include "mapper/EngineMessages.h"

#include "base/Trace.h"

namespace Quillon::Mapper {

namespace {
thread_local EngineMessages* innermost = nullptr;
}

EngineMessages::EngineMessages()
    : outer_(innermost),
      listener_(kTraceLevel, [this](std::string_view message) { Take(message); }) {
  innermost = this;
}

EngineMessages::~EngineMessages() { innermost = outer_; }

void EngineMessages::Take(std::string_view message) {
  if (innermost != nullptr && innermost != this) return;
  const std::lock_guard lock(mutex_);
  if (!text_.empty()) text_ += "; ";
  text_ += message.substr(0, message.find_last_not_of("\r\n") + 1);
}

std::string EngineMessages::Joined() const {
  const std::lock_guard lock(mutex_);
  return text_;
}

}  // namespace Quillon::Mapper
