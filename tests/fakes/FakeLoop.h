#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <map>
#include <utility>

#include "fakes/FakeClock.h"
#include "platform/MainLoop.h"

namespace pellak::fakes {

/// A main loop that turns only when the test says so, by the test's clock. One thread.
class FakeLoop final : public MainLoop {
 public:
  explicit FakeLoop(FakeClock& clock) : clock_(clock) {}

  void post(Task task) override { posted_.push_back(std::move(task)); }
  TimerId after(double seconds, Task task) override { return add(seconds, 0, std::move(task)); }
  TimerId every(double seconds, Task task) override {
    return add(seconds, seconds, std::move(task));
  }
  void cancel(TimerId timer) override { timers.erase(timer); }

  /// Runs what was posted, what that posts included.
  void turn() {
    while (!posted_.empty()) {
      const Task task = std::move(posted_.front());
      posted_.pop_front();
      task();
    }
  }

  /// Lets time pass and runs what becomes due, in its order.
  void pass(double seconds) {
    const double end = clock_.now() + seconds;
    for (;;) {
      turn();
      const auto next = std::min_element(timers.begin(), timers.end(), [](auto& a, auto& b) {
        return a.second.due < b.second.due;
      });
      if (next == timers.end() || next->second.due > end) break;
      clock_.advance(next->second.due - clock_.now());
      const Task task = next->second.task;
      if (next->second.interval > 0) {
        next->second.due += next->second.interval;
      } else {
        timers.erase(next);
      }
      task();
    }
    clock_.advance(end - clock_.now());
  }

  struct Timer {
    double due;
    double interval;
    Task task;
  };
  std::map<TimerId, Timer> timers;

 private:
  TimerId add(double seconds, double interval, Task task) {
    timers[++last_] = {clock_.now() + seconds, interval, std::move(task)};
    return last_;
  }

  FakeClock& clock_;
  std::deque<Task> posted_;
  TimerId last_ = 0;
};

}  // namespace pellak::fakes
