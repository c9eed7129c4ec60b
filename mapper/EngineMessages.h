#pragma once

#include <mutex>
#include <string>

#include "refhost/orvcore/TraceSettings.h"

namespace Quillon {
namespace [[gnu::visibility("default")]] Mapper {

/// Collects what is traced while it lives, beside the trace's own sink: all that its own thread
/// traces, and what threads trace that have no collection of their own. Ends on the thread on which
/// it began; a thread may have several, one within the other, and the innermost collects.
class EngineMessages {
 public:
  EngineMessages();
  ~EngineMessages();
  EngineMessages(const EngineMessages&) = delete;
  EngineMessages& operator=(const EngineMessages&) = delete;

  /// The messages so far, in order, separated by "; ".
  std::string Joined() const;

 private:
  void Take(std::string_view message);

  EngineMessages* const outer_;
  mutable std::mutex mutex_;
  std::string text_;
  RefHost::TraceListener listener_;  // the last: it may call at once
};

}  // namespace Mapper
}  // namespace Quillon
