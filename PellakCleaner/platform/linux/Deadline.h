#pragma once

#include <chrono>
#include <condition_variable>
#include <gio/gio.h>
#include <mutex>
#include <thread>

#include "platform/linux/GlibPtr.h"

namespace pellak::native {

/// Cancels GLib calls that take longer than allowed, connecting and authenticating included,
/// which have no limit of their own. Its thread ends with it.
class Deadline {
 public:
  explicit Deadline(std::chrono::milliseconds allowed)
      : cancellable_(g_cancellable_new()), timer_([this, allowed] { run(allowed); }) {}
  ~Deadline() {
    {
      const std::lock_guard<std::mutex> hold(lock_);
      over_ = true;
    }
    wake_.notify_one();
    timer_.join();
  }
  Deadline(const Deadline&) = delete;
  Deadline& operator=(const Deadline&) = delete;

  GCancellable* cancellable() const { return cancellable_.get(); }

 private:
  void run(std::chrono::milliseconds allowed) {
    std::unique_lock<std::mutex> hold(lock_);
    if (!wake_.wait_for(hold, allowed, [this] { return over_; })) {
      g_cancellable_cancel(cancellable_.get());
    }
  }

  const GlibObject<GCancellable> cancellable_;
  std::mutex lock_;
  std::condition_variable wake_;
  bool over_ = false;
  std::thread timer_;
};

}  // namespace pellak::native
