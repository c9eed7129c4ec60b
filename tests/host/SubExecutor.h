#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "host/orvcore/Threads.h"
#include "tests/host/Inventory.h"

namespace orvcore::threads {

/// The scripted host's executor does nothing but be there.
class AsyncExecutor {
 public:
  AsyncExecutor() = default;
  AsyncExecutor(const AsyncExecutor&) = delete;
  AsyncExecutor& operator=(const AsyncExecutor&) = delete;
  ~AsyncExecutor();

 private:
  scripted::Live<scripted::Counted::Executor> live_;
};

}  // namespace orvcore::threads

namespace scripted {

/// Keeps its tasks until they are waited for, then runs them on the caller's thread in the order
/// that `Results::taskOrder` names. Tasks that were never waited for are dropped.
class SubExecutor final : public orvcore::threads::AsyncThreadedSubExecutor {
 public:
  SubExecutor() = default;
  SubExecutor(const SubExecutor&) = delete;
  SubExecutor& operator=(const SubExecutor&) = delete;
  ~SubExecutor();

  int Concurrency() const override;
  void Queue(std::function<void()> task, int priority) override;
  void Reserved3() override;
  void Reserved4() override;
  void Reserved5() override;
  void Reserved6() override;
  void Reserved7() override;
  void Reserved8() override;
  void WaitForAll() override;

 private:
  std::vector<std::function<void()>> tasks_;
  Live<Counted::SubExecutor> live_;
};

}  // namespace scripted
