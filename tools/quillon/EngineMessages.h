#pragma once

#include <memory>
#include <string>

/// Collects what the engine reports through the host's trace while it lives. One at a time.
class EngineMessages {
 public:
  EngineMessages();
  ~EngineMessages();
  EngineMessages(const EngineMessages&) = delete;
  EngineMessages& operator=(const EngineMessages&) = delete;

  /// The messages so far, in order, separated by "; ".
  std::string Joined() const;

 private:
  struct Log;
  std::shared_ptr<Log> log_;  // shared with the sink, which other threads may still be in
};
