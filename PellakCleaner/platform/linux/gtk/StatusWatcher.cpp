#include "platform/linux/gtk/StatusWatcher.h"

#include <utility>

#include "platform/linux/SessionBus.h"

namespace pellak::native {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 300ms;
constexpr const char* kService = "org.kde.StatusNotifierWatcher";
constexpr const char* kPath = "/StatusNotifierWatcher";
constexpr const char* kHostProperty = "IsStatusNotifierHostRegistered";

}  // namespace

StatusWatcher::StatusWatcher(std::function<void()> changed)
    : changed_(std::move(changed)), bus_(connectToBus(sessionBusAddress(), kPatience)) {
  if (bus_ == nullptr) return;
  present_ = ask();
  watch_ = g_bus_watch_name_on_connection(bus_.get(), kService, G_BUS_NAME_WATCHER_FLAGS_NONE,
                                          onAppeared, onVanished, this, nullptr);
}

StatusWatcher::~StatusWatcher() {
  if (watch_ != 0) g_bus_unwatch_name(watch_);
  if (bus_ != nullptr) g_dbus_connection_close_sync(bus_.get(), nullptr, nullptr);
}

/// Some watchers know no property; they show what they watch.
bool StatusWatcher::ask() const {
  const BusMethod hasOwner = {"org.freedesktop.DBus", "/org/freedesktop/DBus",
                              "org.freedesktop.DBus", "NameHasOwner"};
  const GlibVariant owned =
      callBus(bus_.get(), hasOwner, g_variant_new("(s)", kService), "(b)", kPatience);
  gboolean there = 0;
  if (owned != nullptr) g_variant_get(owned.get(), "(b)", &there);
  if (there == 0) return false;
  const BusMethod get = {kService, kPath, "org.freedesktop.DBus.Properties", "Get"};
  const GlibVariant reply =
      callBus(bus_.get(), get, g_variant_new("(ss)", kService, kHostProperty), "(v)", kPatience);
  if (reply == nullptr) return true;
  GVariant* inner = nullptr;
  g_variant_get(reply.get(), "(v)", &inner);
  const GlibVariant value(inner);
  return !g_variant_is_of_type(inner, G_VARIANT_TYPE_BOOLEAN) || g_variant_get_boolean(inner) != 0;
}

void StatusWatcher::settle(bool present) {
  if (std::exchange(present_, present) != present) changed_();
}

void StatusWatcher::onAppeared(GDBusConnection* /*bus*/, const char* /*name*/,
                               const char* /*owner*/, void* self) {
  auto* watcher = static_cast<StatusWatcher*>(self);
  watcher->settle(watcher->ask());
}

void StatusWatcher::onVanished(GDBusConnection* /*bus*/, const char* /*name*/, void* self) {
  static_cast<StatusWatcher*>(self)->settle(false);
}

}  // namespace pellak::native
