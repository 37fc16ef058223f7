#pragma once

#include <atomic>
#include <csignal>
#include <thread>

namespace pellak::app {

/// The one thread that Ctrl-C and SIGTERM reach. Made before the first other thread starts, by the
/// thread that outlives the rest: all threads started while it lives inherit that both are blocked.
/// Without an `Interruzione` a signal does what it did before.
class AscoltoSegnali {
 public:
  AscoltoSegnali();
  ~AscoltoSegnali();
  AscoltoSegnali(const AscoltoSegnali&) = delete;
  AscoltoSegnali& operator=(const AscoltoSegnali&) = delete;

 private:
  void ascolta();

  sigset_t attesi_{};
  sigset_t prima_{};
  std::atomic<bool> finito_{false};
  std::thread thread_;
};

/// While it lives, the first Ctrl-C (or SIGTERM) is only noted, so that the program can stop
/// cleanly; a second one ends the process at once. One at a time, under an `AscoltoSegnali`.
class Interruzione {
 public:
  Interruzione();
  ~Interruzione();
  Interruzione(const Interruzione&) = delete;
  Interruzione& operator=(const Interruzione&) = delete;

  bool chiesta() const;
};

}  // namespace pellak::app
