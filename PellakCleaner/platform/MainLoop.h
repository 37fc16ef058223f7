#pragma once

#include <cstdint>
#include <functional>

namespace pellak {

/// The loop of the main thread: what runs there, and when.
class MainLoop {
 public:
  using Task = std::function<void()>;
  /// Of a running timer; never 0.
  using TimerId = std::uint64_t;

  virtual ~MainLoop() = default;

  /// Runs `task` on the main thread, behind what was posted before. Any thread.
  virtual void post(Task task) = 0;

  /// Runs `task` once, or every so often, `seconds` from now. Main thread.
  virtual TimerId after(double seconds, Task task) = 0;
  virtual TimerId every(double seconds, Task task) = 0;

  /// Ends a timer; nothing when it is over. Main thread, its own task included.
  virtual void cancel(TimerId timer) = 0;
};

}  // namespace pellak
