// A queue between two threads that holds at most a few things.
#ifndef VOREL_TOOLS_FILES_BOUNDED_QUEUE_H_
#define VOREL_TOOLS_FILES_BOUNDED_QUEUE_H_

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace tool {

template <typename T>
class BoundedQueue {
 public:
  explicit BoundedQueue(size_t room) : room_(room) {}

  // Waits for room. False when the queue is closed: what is behind it wants no more.
  bool push(T thing) {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [&] { return closed_ || things_.size() < room_; });
    if (closed_) return false;
    things_.push_back(std::move(thing));
    changed_.notify_all();
    return true;
  }

  // Waits for a thing; nothing when the queue is closed and empty.
  std::optional<T> pop() {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [&] { return closed_ || !things_.empty(); });
    if (things_.empty()) return std::nullopt;
    std::optional<T> thing = std::move(things_.front());
    things_.pop_front();
    changed_.notify_all();
    return thing;
  }

  void close() {
    const std::lock_guard<std::mutex> lock(mutex_);
    closed_ = true;
    changed_.notify_all();
  }

 private:
  size_t room_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<T> things_;
  bool closed_ = false;
};

}  // namespace tool

#endif  // VOREL_TOOLS_FILES_BOUNDED_QUEUE_H_
