#include "platform/posix/ChildReaper.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <sys/wait.h>
#include <system_error>

namespace pellak::posix {

namespace {

constexpr auto kInterval = std::chrono::milliseconds(200);

// True when there is nothing left to collect. One that fails otherwise than by an interruption
// has been collected by somebody else.
bool collect(pid_t pid) {
  int status = 0;
  const pid_t seen = ::waitpid(pid, &status, WNOHANG);
  return seen == pid || (seen < 0 && errno != EINTR);
}

}  // namespace

ChildReaper::~ChildReaper() {
  {
    const std::lock_guard hold(lock_);
    stopping_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
  collectEnded();
}

void ChildReaper::adopt(pid_t pid) {
  {
    const std::lock_guard hold(lock_);
    children_.push_back(pid);
    if (!thread_.joinable()) {
      try {
        thread_ = std::thread([this] { run(); });
      } catch (const std::system_error&) {
        // No thread to be had now: the next child that is handed over tries again.
      }
    }
  }
  changed_.notify_all();
}

void ChildReaper::run() {
  std::unique_lock hold(lock_);
  while (!stopping_) {
    collectEnded();
    if (children_.empty()) {
      changed_.wait(hold);
    } else {
      changed_.wait_for(hold, kInterval);
    }
  }
}

void ChildReaper::collectEnded() {
  children_.erase(std::remove_if(children_.begin(), children_.end(), collect), children_.end());
}

}  // namespace pellak::posix
