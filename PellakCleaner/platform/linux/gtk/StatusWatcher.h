#pragma once

#include <functional>
#include <gio/gio.h>

#include "platform/linux/BusConnection.h"

// For .cpp files of this folder only.
namespace pellak::native {

/// Knows whether the desktop shows status items: whether org.kde.StatusNotifierWatcher is on the
/// session bus, with a host. Main thread.
class StatusWatcher {
 public:
  /// `changed` is called by the running loop when the answer changes.
  explicit StatusWatcher(std::function<void()> changed);
  ~StatusWatcher();
  StatusWatcher(const StatusWatcher&) = delete;
  StatusWatcher& operator=(const StatusWatcher&) = delete;

  bool present() const { return present_; }

 private:
  static void onAppeared(GDBusConnection* bus, const char* name, const char* owner, void* self);
  static void onVanished(GDBusConnection* bus, const char* name, void* self);
  bool ask() const;
  void settle(bool present);

  std::function<void()> changed_;
  BusConnection bus_;
  guint watch_ = 0;
  bool present_ = false;
};

}  // namespace pellak::native
