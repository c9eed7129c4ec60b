#pragma once

#include <atomic>
#include <cstdint>
#include <locale>
#include <sstream>
#include <string>
#include <string_view>

#include "host/orvcore/Allocator.h"
#include "host/orvcore/Debug.h"

namespace Quillon {

inline constexpr std::string_view kTraceCategory = "Quillon";
inline constexpr std::string_view kEngineTraceCategory = "QuillonImpl";
inline constexpr int kTraceLevel = 7;

/// String stream for trace messages; its memory comes from the host's recycler.
using TraceStream =
    std::basic_ostringstream<char, std::char_traits<char>, orvcore::allocator::STLAllocator<char>>;

/// What one failure site remembers of the host's trace settings. Any thread.
class TraceSite {
 public:
  /// Asks the host only when its trace settings have changed since this site last asked.
  bool IsEnabled(std::string_view category) {
    const std::int64_t count = orvcore::debug::TraceChangeCount();
    if (changeCount_.exchange(count) != count) {
      enabled_.exchange(orvcore::debug::TraceEnabled(category, kTraceLevel, true));
    }
    return enabled_.load();
  }

 private:
  static constexpr std::int64_t kNeverAsked = INT64_MIN;  // no 32-bit count equals it
  std::atomic<std::int64_t> changeCount_{kNeverAsked};
  std::atomic<bool> enabled_{false};
};

/// Reports a failure when anyone listens: `compose` writes the message into the stream, the line
/// end follows. Every call site passes a lambda of its own, so each has its own `TraceSite`.
template <class Compose>
void TraceFailure(std::string_view category, Compose compose) {
  static constinit TraceSite site;
  if (!site.IsEnabled(category)) return;
  TraceStream message;
  // What the recycler throws passes, where a stream would keep it and go on with a cut-off text.
  message.exceptions(std::ios_base::badbit);
  message.imbue(std::locale::classic());
  compose(message);
  message << "\r\n" << std::flush;
  orvcore::debug::Trace(kTraceLevel, category, message.view());
}

/// The same with the engine's common category.
template <class Compose>
void TraceFailure(Compose compose) {
  TraceFailure(kTraceCategory, compose);
}

}  // namespace Quillon
