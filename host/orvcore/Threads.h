#pragma once

#include <functional>
#include <memory>

namespace orvcore::threads {

/// A pool of threads. Opaque to the engine.
class AsyncExecutor;

/// A share of an executor's threads, owned by one caller. The order of the virtual operations
/// is fixed; the engine calls the second and the ninth.
class AsyncThreadedSubExecutor {
 public:
  /// How many tasks may run at once.
  virtual int Concurrency() const = 0;
  /// Takes the task over and runs it some time before `WaitForAll` returns. The engine always
  /// passes priority 0.
  virtual void Queue(std::function<void()> task, int priority) = 0;
  virtual void Reserved3() = 0;
  virtual void Reserved4() = 0;
  virtual void Reserved5() = 0;
  virtual void Reserved6() = 0;
  virtual void Reserved7() = 0;
  virtual void Reserved8() = 0;
  /// Blocks until every queued task has finished. Raises the first exception that a task threw.
  virtual void WaitForAll() = 0;

 protected:
  ~AsyncThreadedSubExecutor() = default;
};

/// The executor for work that is bound by the processor.
std::shared_ptr<AsyncExecutor> CreateCPUBoundExecutor();

/// A sub-executor that runs up to `concurrency` tasks at once. It keeps what it needs of the
/// executor, whose handle may be released at once. Null when none can be had.
std::shared_ptr<AsyncThreadedSubExecutor> CreateSubExecutor(
    const std::shared_ptr<AsyncExecutor>& executor, int concurrency);

}  // namespace orvcore::threads
