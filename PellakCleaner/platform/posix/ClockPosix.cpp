#include "platform/posix/ClockPosix.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace pellak::posix {

namespace {

using Seconds = std::chrono::duration<double>;

// The longest wait handed to the library at once: a conversion of more seconds to ticks could
// overflow. A day is as good as for ever, since every caller looks at the time again.
constexpr double kLongestWait = 86400.0;

// False for NaN too.
bool positive(double seconds) { return seconds > 0.0; }

std::chrono::nanoseconds slice(double seconds) {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
      Seconds(std::min(seconds, kLongestWait)));
}

}  // namespace

double ClockPosix::now() const {
  return Seconds(std::chrono::system_clock::now().time_since_epoch()).count();
}

double ClockPosix::steady() const {
  return Seconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void ClockPosix::sleepFor(double seconds) {
  if (!positive(seconds)) return;
  const double end = steady() + seconds;
  for (double left = seconds; positive(left); left = end - steady()) {
    std::this_thread::sleep_for(slice(left));
  }
}

void ClockPosix::waitFor(std::condition_variable& signal, std::unique_lock<std::mutex>& hold,
                         double seconds) {
  if (!positive(seconds)) return;
  signal.wait_for(hold, slice(seconds));
}

}  // namespace pellak::posix
