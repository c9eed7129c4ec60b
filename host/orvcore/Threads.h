#pragma once

#include <functional>
#include <memory>

// Threads for the bands of a frame in system memory. The engine asks for an executor and a
// sub-executor once a call, on the thread of its caller, and releases both before the call returns.

namespace orvcore::threads {

// Bands run in the default floating-point mode, whatever the mode of the thread. They throw nothing
// of their own; what the host's transfer functions throw leaves through them.

/// A pool of threads. The host's own: the engine only hands it on.
class AsyncExecutor;

/// A share of an executor's threads, owned by one caller and called on his thread alone. The order
/// of the virtual operations is fixed; the engine calls the second and the ninth.
class AsyncThreadedSubExecutor {
 public:
  /// How many tasks may run at once. Not asked.
  virtual int Concurrency() const = 0;
  /// Takes the task over and runs it once, on any thread, some time before `WaitForAll` returns. At
  /// most 16 tasks a frame; they share nothing that is written, and none waits for another. The
  /// engine passes 0 for `priority`.
  virtual void Queue(std::function<void()> task, int priority) = 0;
  // Operations of the host's own: their places count. The engine calls none of them.
  virtual void Reserved3() = 0;
  virtual void Reserved4() = 0;
  virtual void Reserved5() = 0;
  virtual void Reserved6() = 0;
  virtual void Reserved7() = 0;
  virtual void Reserved8() = 0;
  /// Blocks until every queued task has finished, also when none was queued. What the tasks wrote
  /// is visible when it returns. Raises the first exception that a task threw.
  virtual void WaitForAll() = 0;

 protected:
  ~AsyncThreadedSubExecutor() = default;
};

/// The executor for work that is bound by the processor. May be null where the host has none, as
/// long as `CreateSubExecutor` takes null.
std::shared_ptr<AsyncExecutor> CreateCPUBoundExecutor();

/// A sub-executor that runs up to `concurrency` tasks at once: as many as there will be tasks, 0 to
/// 16. It keeps what it needs of the executor, whose handle is released at once. Null when none can
/// be had: the engine then does all the work on the thread of its caller. If it is released with
/// tasks in it, as when queueing throws, its destructor waits for them: their pixels are the
/// caller's.
std::shared_ptr<AsyncThreadedSubExecutor> CreateSubExecutor(
    const std::shared_ptr<AsyncExecutor>& executor, int concurrency);

}  // namespace orvcore::threads
