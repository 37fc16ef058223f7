#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>

namespace pellak {

/// Runs tasks one after another, in the order they were posted, on one thread of its own.
///
/// The thread starts with the first task. Destroying the queue waits for the running task,
/// drops the ones not begun and joins the thread; a task must therefore never destroy its own
/// queue. `post`, `postAfter` and `drain` may be called from any thread. A task must not
/// throw. `post` and `postAfter` throw std::system_error, with nothing queued, when the system
/// gives no thread.
class SerialQueue {
 public:
  using Task = std::function<void()>;

  explicit SerialQueue(std::string etichetta);
  ~SerialQueue();
  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;

  void post(Task task);
  /// Runs `task` on the queue once `attesa` has passed, behind what is queued by then. Dropped
  /// when the queue goes first.
  void postAfter(std::chrono::milliseconds attesa, Task task);

  /// Waits until every task posted before the call has run. Not from a task of this queue.
  void drain();
  /// The same for at most `attesa`; whether they have all run.
  bool drainFor(std::chrono::milliseconds attesa);

  /// Tasks posted and not yet finished.
  std::size_t inAttesa();

  const std::string& etichetta() const { return etichetta_; }

 private:
  void run();
  void startThread();
  /// Moves due delayed tasks to the end of the queue.
  void promoteDue();

  const std::string etichetta_;
  std::mutex lock_;
  std::condition_variable changed_;
  std::deque<Task> pending_;
  std::multimap<std::chrono::steady_clock::time_point, Task> delayed_;
  std::uint64_t posted_ = 0;
  std::uint64_t finished_ = 0;
  bool stopping_ = false;
  std::thread thread_;
};

}  // namespace pellak
