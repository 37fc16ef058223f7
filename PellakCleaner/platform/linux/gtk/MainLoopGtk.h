#pragma once

#include <deque>
#include <map>
#include <memory>
#include <mutex>

#include "platform/MainLoop.h"

using GMainLoop = struct _GMainLoop;
using GSource = struct _GSource;

namespace pellak::native {

/// The main thread's loop of GLib. Sleeps unless something was posted or a timer is due.
class MainLoopGtk final : public MainLoop {
 public:
  MainLoopGtk();
  /// What was posted and has not run by now never will.
  ~MainLoopGtk() override;
  MainLoopGtk(const MainLoopGtk&) = delete;
  MainLoopGtk& operator=(const MainLoopGtk&) = delete;

  /// Runs `pronto`, then whatever comes, until `terminate`; returns its status.
  int run(Task pronto);
  /// Nothing posted and no timer runs after it.
  void terminate(int stato);

  void post(Task task) override;
  TimerId after(double seconds, Task task) override;
  TimerId every(double seconds, Task task) override;
  void cancel(TimerId timer) override;

 private:
  struct Timer;

  static int onPosted(void* self);
  static int onTimer(void* timer);
  TimerId start(double seconds, bool again, Task task);

  GMainLoop* loop_;
  int stato_ = 0;
  bool ended_ = false;
  std::map<TimerId, std::shared_ptr<Timer>> timers_;
  TimerId last_ = 0;

  std::mutex lock_;
  std::deque<Task> posted_;    ///< guarded by lock_
  GSource* wakeUp_ = nullptr;  ///< guarded by lock_; there while something is posted
};

}  // namespace pellak::native
