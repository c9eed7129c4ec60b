#include <algorithm>
#include <condition_variable>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <utility>

#include "refhost/orvcore/Arena.h"
#include "refhost/orvcore/AsyncExecutor.h"

namespace orvcore::threads {

namespace {

/// Queued tasks and the threads that work on them. A thread that waits works too, so that progress
/// never hangs on the pool.
class TaskQueue final : public RefHost::Job {
 public:
  explicit TaskQueue(int concurrency) : concurrency_(concurrency) {}

  int Concurrency() const { return concurrency_; }

  /// True when another helper is to be sent.
  bool Push(std::function<void()> task) {
    const std::lock_guard lock(mutex_);
    tasks_.push_back(std::move(task));
    ++unfinished_;
    changed_.notify_one();
    // The thread that waits is the last of those that may work.
    const int mostHelpers = std::min(concurrency_, RefHost::Arena::Parallelism()) - 1;
    if (helpers_ >= mostHelpers) return false;
    ++helpers_;
    return true;
  }

  void HelperFailed() {
    const std::lock_guard lock(mutex_);
    --helpers_;
  }

  void Help() noexcept override {
    std::unique_lock lock(mutex_);
    Work(lock);
    --helpers_;
  }

  /// The first exception since the last wait, when there was one.
  std::exception_ptr Wait() {
    std::unique_lock lock(mutex_);
    while (unfinished_ > 0) {
      Work(lock);
      if (unfinished_ > 0) changed_.wait(lock);
    }
    return std::exchange(firstError_, nullptr);
  }

 private:
  void Work(std::unique_lock<std::mutex>& lock) noexcept {
    while (!tasks_.empty() && running_ < concurrency_) {
      std::function<void()> task = std::move(tasks_.front());
      tasks_.pop_front();
      ++running_;
      lock.unlock();
      std::exception_ptr error = Run(std::move(task));
      lock.lock();
      --running_;
      --unfinished_;
      if (error != nullptr && firstError_ == nullptr) firstError_ = std::move(error);
      changed_.notify_all();
    }
  }

  /// The task and all it holds are gone when this returns.
  // NOLINTNEXTLINE(performance-unnecessary-value-param): its own, so that it ends here
  static std::exception_ptr Run(std::function<void()> task) noexcept {
    try {
      task();
    } catch (...) {
      return std::current_exception();
    }
    return nullptr;
  }

  const int concurrency_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<std::function<void()>> tasks_;
  int helpers_ = 0;
  int running_ = 0;
  int unfinished_ = 0;
  std::exception_ptr firstError_;
};

class SubExecutor final : public AsyncThreadedSubExecutor {
 public:
  SubExecutor(std::shared_ptr<AsyncExecutor> executor, int concurrency)
      : executor_(std::move(executor)), queue_(std::make_shared<TaskQueue>(concurrency)) {}
  SubExecutor(const SubExecutor&) = delete;
  SubExecutor& operator=(const SubExecutor&) = delete;
  /// Waits for the tasks; what they throw and no one waited for is dropped.
  ~SubExecutor() { queue_->Wait(); }

  int Concurrency() const override { return queue_->Concurrency(); }

  void Queue(std::function<void()> task, int /*priority*/) override {
    if (!queue_->Push(std::move(task))) return;
    try {
      executor_->SendHelper(queue_);
    } catch (...) {
      queue_->HelperFailed();  // the thread that waits does the work
    }
  }

  void WaitForAll() override {
    if (const std::exception_ptr error = queue_->Wait()) std::rethrow_exception(error);
  }

  void Reserved3() override {}
  void Reserved4() override {}
  void Reserved5() override {}
  void Reserved6() override {}
  void Reserved7() override {}
  void Reserved8() override {}

 private:
  std::shared_ptr<AsyncExecutor> executor_;
  std::shared_ptr<TaskQueue> queue_;
};

}  // namespace

std::shared_ptr<AsyncThreadedSubExecutor> CreateSubExecutor(
    const std::shared_ptr<AsyncExecutor>& executor, int concurrency) {
  if (executor == nullptr) return nullptr;
  return std::make_shared<SubExecutor>(executor, std::max(concurrency, 1));
}

}  // namespace orvcore::threads
