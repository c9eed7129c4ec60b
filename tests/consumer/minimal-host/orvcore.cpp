// Memory, messages and threads.

#include <cstdio>
#include <future>
#include <new>
#include <stdexcept>
#include <utility>
#include <vector>

#include "host/orvcore/Allocator.h"
#include "host/orvcore/Config.h"
#include "host/orvcore/Debug.h"
#include "host/orvcore/Threads.h"

namespace orvcore::allocator {

namespace {
constexpr std::align_val_t kAlignment{64};
}  // namespace

void* MemoryRecycler::Allocate(std::size_t bytes) { return ::operator new(bytes, kAlignment); }

void MemoryRecycler::Recycle(void* block, std::size_t /*bytes*/) noexcept {
  ::operator delete(block, kAlignment);
}

}  // namespace orvcore::allocator

namespace orvcore::config {

void DoThrowNullPtrException(std::string_view typeName) {
  throw std::logic_error("an empty handle to " + std::string(typeName) + " was used");
}

}  // namespace orvcore::config

namespace orvcore::debug {

void Trace(int level, std::string_view category, std::string_view message) {
  std::fprintf(stderr, "%d [%.*s] %.*s", level, static_cast<int>(category.size()), category.data(),
               static_cast<int>(message.size()), message.data());
}

bool TraceEnabled(std::string_view /*category*/, int /*level*/, bool /*includeParents*/) {
  return true;
}

std::int32_t TraceChangeCount() { return 1; }

std::string GetTypeName(const std::type_info& type) { return type.name(); }

}  // namespace orvcore::debug

namespace orvcore::threads {

/// There is no pool: a task is given a thread when it is queued.
class AsyncExecutor {};

namespace {

class SubExecutor final : public AsyncThreadedSubExecutor {
 public:
  int Concurrency() const override { return 1; }
  void Queue(std::function<void()> task, int /*priority*/) override {
    tasks_.push_back(std::async(std::launch::async, std::move(task)));
  }
  void Reserved3() override {}
  void Reserved4() override {}
  void Reserved5() override {}
  void Reserved6() override {}
  void Reserved7() override {}
  void Reserved8() override {}
  /// What is left in the list when a task has thrown waits in its destructor.
  void WaitForAll() override {
    for (std::future<void>& task : std::exchange(tasks_, {})) task.get();
  }

 private:
  std::vector<std::future<void>> tasks_;
};

}  // namespace

std::shared_ptr<AsyncExecutor> CreateCPUBoundExecutor() {
  return std::make_shared<AsyncExecutor>();
}

std::shared_ptr<AsyncThreadedSubExecutor> CreateSubExecutor(
    const std::shared_ptr<AsyncExecutor>& /*executor*/, int /*concurrency*/) {
  return std::make_shared<SubExecutor>();
}

}  // namespace orvcore::threads
