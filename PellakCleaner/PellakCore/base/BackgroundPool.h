#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace pellak {

/// A few threads for work that nobody waits for. Threads start as there is work for them.
///
/// Destroying the pool stops it: tasks not begun are dropped, running ones see `stopping` and are
/// joined. A task that takes long asks `stopping` often; a task must not throw, nor destroy the
/// pool. Any thread may post.
class BackgroundPool {
 public:
  using Task = std::function<void()>;

  explicit BackgroundPool(std::size_t threads) : most_(threads) {}
  ~BackgroundPool() { stop(); }
  BackgroundPool(const BackgroundPool&) = delete;
  BackgroundPool& operator=(const BackgroundPool&) = delete;

  /// False when the task will never run: the pool is stopping, or the system has no thread left.
  bool post(Task task);

  /// Takes no lock.
  bool stopping() const noexcept { return stopping_.load(std::memory_order_relaxed); }

  /// Ends the pool for good and waits for the running tasks.
  void stop();

 private:
  void run();
  bool startOne();  // with the lock held

  const std::size_t most_;
  std::atomic<bool> stopping_{false};
  std::mutex lock_;
  std::condition_variable work_;
  std::deque<Task> pending_;
  std::vector<std::thread> threads_;
  std::size_t idle_ = 0;
};

}  // namespace pellak
