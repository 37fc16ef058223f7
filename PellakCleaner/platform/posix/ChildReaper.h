#pragma once

#include <condition_variable>
#include <mutex>
#include <sys/types.h>
#include <thread>
#include <vector>

namespace pellak::posix {

/// Collects children whose owners are gone, so that none stays a zombie. Its thread starts with
/// the first child handed over and looks at the children a few times a second while there are
/// any. Destroying the reaper looks once more and leaves children that still run to the system.
/// Threads: any.
class ChildReaper {
 public:
  ChildReaper() = default;
  ~ChildReaper();
  ChildReaper(const ChildReaper&) = delete;
  ChildReaper& operator=(const ChildReaper&) = delete;

  /// Takes over a child of this process that nobody else will collect.
  void adopt(pid_t pid);

 private:
  void run();
  void collectEnded();

  std::mutex lock_;
  std::condition_variable changed_;
  std::vector<pid_t> children_;
  bool stopping_ = false;
  std::thread thread_;
};

}  // namespace pellak::posix
