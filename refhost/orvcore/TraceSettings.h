#pragma once

#include <functional>
#include <string_view>

namespace RefHost {

/// Receives the messages that are enabled, on the thread that traces. It may be called from
/// several threads at once; what it throws is dropped.
using TraceSink = std::function<void(int level, std::string_view category, std::string_view text)>;

/// Replaces the sink; an empty one puts back standard error, where messages go at first. A call
/// into the old sink may still be running on another thread when this returns. Any thread.
void SetTraceSink(TraceSink sink);

/// Enables messages up to `level` in every category that has no level of its own. At first 0. Any
/// thread.
void SetTraceLevel(int level);

/// The same for one category. Any thread.
void SetTraceLevel(std::string_view category, int level);

/// Takes the levels of single categories back. Any thread.
void ClearCategoryTraceLevels();

/// Hears the messages up to a level of its own while it lives, of every category, beside the sink.
/// The function is called on the thread that traces, by several at once; it may not trace, and what
/// it throws is dropped. When the destructor returns, no call into it is running: it waits for
/// those of other threads. Any thread.
class TraceListener {
 public:
  TraceListener(int level, std::function<void(std::string_view text)> hear);
  ~TraceListener();
  TraceListener(const TraceListener&) = delete;
  TraceListener& operator=(const TraceListener&) = delete;

 private:
  int level_;
  std::function<void(std::string_view)> hear_;
  friend class TraceListeners;
};

}  // namespace RefHost
