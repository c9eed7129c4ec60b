#include <algorithm>
#include <atomic>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <utility>
#include <vector>

#include "host/orvcore/Debug.h"
#include "refhost/orvcore/TraceSettings.h"

namespace RefHost {

/// Those that live.
class TraceListeners {
 public:
  void Add(const TraceListener& listener) {
    const std::lock_guard lock(mutex_);
    listeners_.push_back(&listener);
  }
  void Remove(const TraceListener& listener) {
    const std::lock_guard lock(mutex_);
    std::erase(listeners_, &listener);
  }
  bool AnyHears(int level) const {
    const std::shared_lock lock(mutex_);
    return std::any_of(listeners_.begin(), listeners_.end(),
                       [level](const auto* listener) { return level <= listener->level_; });
  }
  void Tell(int level, std::string_view text) const {
    const std::shared_lock lock(mutex_);
    for (const TraceListener* listener : listeners_) {
      if (level > listener->level_) continue;
      try {
        listener->hear_(text);
      } catch (...) {  // NOLINT(bugprone-empty-catch): tracing never changes a result
      }
    }
  }

 private:
  mutable std::shared_mutex mutex_;
  std::vector<const TraceListener*> listeners_;
};

namespace {

void WriteToStandardError(int /*level*/, std::string_view /*category*/, std::string_view text) {
  std::cerr << text << std::flush;
}

struct Settings {
  std::mutex mutex;
  int level = 0;
  std::map<std::string, int, std::less<>> categoryLevels;
  std::shared_ptr<const TraceSink> sink = std::make_shared<TraceSink>(WriteToStandardError);
  std::atomic<std::int32_t> changeCount{1};
  TraceListeners listeners;
};

/// Never destroyed: messages may come while the process ends.
Settings& TheSettings() {
  static Settings& settings = *std::make_unique<Settings>().release();
  return settings;
}

template <class Function>
void Change(Function change) {
  Settings& settings = TheSettings();
  const std::lock_guard lock(settings.mutex);
  change(settings);
  settings.changeCount.fetch_add(1);
}

bool SinkTakes(std::string_view category, int level, bool includeParents) {
  Settings& settings = TheSettings();
  const std::lock_guard lock(settings.mutex);
  const auto own = settings.categoryLevels.find(category);
  if (own != settings.categoryLevels.end()) return level <= own->second;
  return includeParents && level <= settings.level;
}

}  // namespace

void SetTraceSink(TraceSink sink) {
  if (!sink) sink = WriteToStandardError;
  auto shared = std::make_shared<const TraceSink>(std::move(sink));
  Change([&](Settings& settings) { settings.sink.swap(shared); });
}

void SetTraceLevel(int level) {
  Change([&](Settings& settings) { settings.level = level; });
}

void SetTraceLevel(std::string_view category, int level) {
  Change([&](Settings& settings) {
    settings.categoryLevels.insert_or_assign(std::string(category), level);
  });
}

void ClearCategoryTraceLevels() {
  Change([](Settings& settings) { settings.categoryLevels.clear(); });
}

TraceListener::TraceListener(int level, std::function<void(std::string_view text)> hear)
    : level_(level), hear_(std::move(hear)) {
  Settings& settings = TheSettings();
  settings.listeners.Add(*this);
  settings.changeCount.fetch_add(1);
}

TraceListener::~TraceListener() {
  Settings& settings = TheSettings();
  settings.listeners.Remove(*this);
  settings.changeCount.fetch_add(1);
}

}  // namespace RefHost

namespace orvcore::debug {

std::int32_t TraceChangeCount() { return RefHost::TheSettings().changeCount.load(); }

bool TraceEnabled(std::string_view category, int level, bool includeParents) {
  return RefHost::TheSettings().listeners.AnyHears(level) ||
         RefHost::SinkTakes(category, level, includeParents);
}

void Trace(int level, std::string_view category, std::string_view message) {
  RefHost::TheSettings().listeners.Tell(level, message);
  if (!RefHost::SinkTakes(category, level, true)) return;
  std::shared_ptr<const RefHost::TraceSink> sink;
  {
    RefHost::Settings& settings = RefHost::TheSettings();
    const std::lock_guard lock(settings.mutex);
    sink = settings.sink;
  }
  try {
    (*sink)(level, category, message);
  } catch (...) {  // NOLINT(bugprone-empty-catch): tracing never changes a result
  }
}

}  // namespace orvcore::debug
