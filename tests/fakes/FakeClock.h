#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "platform/Clock.h"

namespace pellak::fakes {

/// A clock set by hand. Sleeping and waiting move it forward by what was asked instead of taking
/// that long; a test on real threads or programs gives it a `pausa`, the real time each of them
/// takes, so that the others get somewhere meanwhile. Any thread.
class FakeClock final : public Clock {
 public:
  explicit FakeClock(double wall = 1'700'000'000.0,
                     std::chrono::milliseconds pausa = std::chrono::milliseconds(0))
      : wall_(wall), pausa_(pausa) {}

  double now() const override {
    const std::lock_guard hold(lock_);
    return wall_;
  }

  double steady() const override {
    const std::lock_guard hold(lock_);
    return steady_;
  }

  void sleepFor(double seconds) override {
    advance(seconds);
    std::this_thread::sleep_for(pausa_);
  }

  void waitFor(std::condition_variable& signal, std::unique_lock<std::mutex>& hold,
               double seconds) override {
    if (signal.wait_for(hold, pausa_) == std::cv_status::timeout) advance(seconds);
  }

  /// Time passes: both clocks move.
  void advance(double seconds) {
    if (!(seconds > 0.0)) return;
    const std::lock_guard hold(lock_);
    wall_ += seconds;
    steady_ += seconds;
  }

 private:
  mutable std::mutex lock_;
  double wall_;
  double steady_ = 1000.0;
  const std::chrono::milliseconds pausa_;
};

}  // namespace pellak::fakes
