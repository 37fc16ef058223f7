#pragma once

#include "platform/Clock.h"

namespace pellak::posix {

/// The system's own clocks. No state.
class ClockPosix final : public Clock {
 public:
  double now() const override;
  double steady() const override;
  void sleepFor(double seconds) override;
  void waitFor(std::condition_variable& signal, std::unique_lock<std::mutex>& hold,
               double seconds) override;
};

}  // namespace pellak::posix
