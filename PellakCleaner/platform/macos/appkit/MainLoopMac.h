#pragma once

#include <memory>

#include "platform/MainLoop.h"

namespace pellak::native {

/// The application's event loop. Posted work and timers also run while a menu is open, a dialog is
/// shown or a window resized.
class MainLoopMac final : public MainLoop {
 public:
  MainLoopMac();
  /// What was posted and has not run by now never will.
  ~MainLoopMac() override;
  MainLoopMac(const MainLoopMac&) = delete;
  MainLoopMac& operator=(const MainLoopMac&) = delete;

  /// Runs the shared application until `terminate`; returns its status. Once.
  int run();
  /// Nothing posted and no timer runs after it.
  void terminate(int stato);

  void post(Task task) override;
  TimerId after(double seconds, Task task) override;
  TimerId every(double seconds, Task task) override;
  void cancel(TimerId timer) override;

 private:
  struct State;

  TimerId start(double seconds, bool again, Task task);

  /// Shared with what is posted, which may outlive this object.
  std::shared_ptr<State> state_;
};

}  // namespace pellak::native
