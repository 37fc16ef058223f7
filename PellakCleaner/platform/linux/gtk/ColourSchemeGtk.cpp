#include "platform/linux/gtk/ColourSchemeGtk.h"

#include <gtk/gtk.h>
#include <string>

#include "platform/linux/SessionBus.h"

namespace pellak::native {
namespace {

constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
constexpr const char* kPath = "/org/freedesktop/portal/desktop";
constexpr const char* kSettings = "org.freedesktop.portal.Settings";
constexpr const char* kAppearance = "org.freedesktop.appearance";
constexpr const char* kColourScheme = "color-scheme";
/// By the portal: 0 is no preference, 1 dark, 2 light.
constexpr guint32 kDark = 1;

void apply(GVariant* value) {
  GlibVariant inner(g_variant_ref(value));
  while (g_variant_is_of_type(inner.get(), G_VARIANT_TYPE_VARIANT) != 0) {
    inner.reset(g_variant_get_variant(inner.get()));
  }
  if (g_variant_is_of_type(inner.get(), G_VARIANT_TYPE_UINT32) == 0) return;
  const int dark = g_variant_get_uint32(inner.get()) == kDark ? 1 : 0;
  g_object_set(gtk_settings_get_default(), "gtk-application-prefer-dark-theme", dark, nullptr);
}

}  // namespace

ColourSchemeGtk::ColourSchemeGtk() : gone_(g_cancellable_new()) {
  const std::string address = sessionBusAddress();
  if (address.empty()) return;
  const auto flags =
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  g_dbus_connection_new_for_address(address.c_str(), flags, nullptr, gone_.get(), onConnected,
                                    this);
}

ColourSchemeGtk::~ColourSchemeGtk() {
  g_cancellable_cancel(gone_.get());
  if (bus_ == nullptr) return;
  g_dbus_connection_signal_unsubscribe(bus_.get(), changes_);
  g_dbus_connection_close_sync(bus_.get(), nullptr, nullptr);
}

void ColourSchemeGtk::onConnected(GObject* /*source*/, GAsyncResult* outcome, void* raw) {
  GError* reason = nullptr;
  BusConnection bus(g_dbus_connection_new_for_address_finish(outcome, &reason));
  const GlibError error(reason);
  if (bus == nullptr) return;
  auto* self = static_cast<ColourSchemeGtk*>(raw);
  self->bus_ = std::move(bus);
  self->changes_ = g_dbus_connection_signal_subscribe(
      self->bus_.get(), kPortal, kSettings, "SettingChanged", kPath, kAppearance,
      G_DBUS_SIGNAL_FLAGS_NONE, onChanged, self, nullptr);
  g_dbus_connection_call(self->bus_.get(), kPortal, kPath, kSettings, "Read",
                         g_variant_new("(ss)", kAppearance, kColourScheme), G_VARIANT_TYPE("(v)"),
                         G_DBUS_CALL_FLAGS_NONE, -1, self->gone_.get(), onRead, self);
}

void ColourSchemeGtk::onRead(GObject* bus, GAsyncResult* outcome, void* /*self*/) {
  const GlibVariant reply(g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), outcome, nullptr));
  if (reply == nullptr) return;
  const GlibVariant value(g_variant_get_child_value(reply.get(), 0));
  apply(value.get());
}

void ColourSchemeGtk::onChanged(GDBusConnection* /*bus*/, const char* /*sender*/,
                                const char* /*path*/, const char* /*interface*/,
                                const char* /*signal*/, GVariant* parameters, void* /*self*/) {
  const char* space = nullptr;
  const char* key = nullptr;
  GVariant* raw = nullptr;
  g_variant_get(parameters, "(&s&sv)", &space, &key, &raw);
  const GlibVariant value(raw);
  if (std::string(key) == kColourScheme) apply(value.get());
}

}  // namespace pellak::native
