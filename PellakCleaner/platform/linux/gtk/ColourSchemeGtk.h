#pragma once

#include <gio/gio.h>

#include "platform/linux/BusConnection.h"

// For .cpp files of this folder only.
namespace pellak::native {

/// Makes windows and page light or dark as the user has chosen for the desktop, also when that
/// changes: GTK 3 does not ask the desktop's settings portal by itself. Main thread.
class ColourSchemeGtk {
 public:
  ColourSchemeGtk();
  ~ColourSchemeGtk();
  ColourSchemeGtk(const ColourSchemeGtk&) = delete;
  ColourSchemeGtk& operator=(const ColourSchemeGtk&) = delete;

 private:
  static void onConnected(GObject* source, GAsyncResult* outcome, void* self);
  static void onRead(GObject* bus, GAsyncResult* outcome, void* self);
  static void onChanged(GDBusConnection* bus, const char* sender, const char* path,
                        const char* interface, const char* signal, GVariant* parameters,
                        void* self);

  GlibObject<GCancellable> gone_;
  BusConnection bus_;
  guint changes_ = 0;
};

}  // namespace pellak::native
