#pragma once

#include <condition_variable>
#include <mutex>

namespace pellak {

/// The time, and waiting for it to pass. Any thread.
class Clock {
 public:
  virtual ~Clock() = default;

  /// Seconds since 1970 (UTC) by the system's wall clock, which may jump.
  virtual double now() const = 0;

  /// Seconds since some fixed moment; never goes back. For limits and intervals.
  virtual double steady() const = 0;

  /// Blocks the calling thread for `seconds`; zero, less and NaN return at once.
  virtual void sleepFor(double seconds) = 0;

  /// Waits until `signal` is notified or `seconds` have passed. `hold` is held on entry and on
  /// return and released in between. May return early: callers test their condition and the
  /// time again.
  virtual void waitFor(std::condition_variable& signal, std::unique_lock<std::mutex>& hold,
                       double seconds) = 0;
};

}  // namespace pellak
