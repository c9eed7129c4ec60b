#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace Quillon::Cli {

/// Hands items from one thread to another, never more than `capacity` of them waiting. Any thread.
template <class Item>
class BoundedQueue {
 public:
  explicit BoundedQueue(std::size_t capacity) : capacity_(capacity) {}

  /// Waits for room. False, and the item dropped, once the queue is finished or cancelled.
  bool Push(Item item) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return finished_ || items_.size() < capacity_; });
    if (finished_) return false;
    items_.push_back(std::move(item));
    changed_.notify_all();
    return true;
  }

  /// Waits for an item. Nothing once the queue is finished and empty.
  std::optional<Item> Pop() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return finished_ || !items_.empty(); });
    if (items_.empty()) return std::nullopt;
    std::optional<Item> item;
    item.emplace(std::move(items_.front()));
    items_.pop_front();
    changed_.notify_all();
    return item;
  }

  /// Nothing more comes.
  void Finish() {
    const std::lock_guard lock(mutex_);
    finished_ = true;
    changed_.notify_all();
  }

  /// Nothing more comes, and what waits is dropped.
  void Cancel() {
    std::deque<Item> dropped;
    const std::lock_guard lock(mutex_);
    finished_ = true;
    dropped.swap(items_);
    changed_.notify_all();
  }

 private:
  std::size_t capacity_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Item> items_;
  bool finished_ = false;
};

}  // namespace Quillon::Cli
