#include <atomic>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "host/orvcore/Debug.h"
#include "refhost/orvcore/TraceSettings.h"

namespace orvcore::debug {

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

std::int32_t TraceChangeCount() { return TheSettings().changeCount.load(); }

bool TraceEnabled(std::string_view category, int level, bool includeParents) {
  Settings& settings = TheSettings();
  const std::lock_guard lock(settings.mutex);
  const auto own = settings.categoryLevels.find(category);
  if (own != settings.categoryLevels.end()) return level <= own->second;
  return includeParents && level <= settings.level;
}

void Trace(int level, std::string_view category, std::string_view message) {
  if (!TraceEnabled(category, level, true)) return;
  std::shared_ptr<const TraceSink> sink;
  {
    Settings& settings = TheSettings();
    const std::lock_guard lock(settings.mutex);
    sink = settings.sink;
  }
  try {
    (*sink)(level, category, message);
  } catch (...) {  // NOLINT(bugprone-empty-catch): tracing never changes a result
  }
}

}  // namespace orvcore::debug
