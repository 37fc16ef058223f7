#include "platform/linux/NotifierLinux.h"

#include "platform/linux/BusConnection.h"
#include "platform/linux/SessionBus.h"

namespace pellak::native {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 3s;
constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kPath = "/org/freedesktop/Notifications";
constexpr const char* kAppName = "Pellak Cleaner";
constexpr const char* kIcon = "pellak-cleaner";
constexpr const char* kDesktopEntry = "com.pellaklab.cleaner";
/// How long it stays is the desktop's choice.
constexpr gint32 kDefaultExpiry = -1;

Error failure(const GlibError& error) {
  if (error == nullptr) return {ErrorKind::failed, 0, "no answer"};
  const bool absent =
      g_error_matches(error.get(), G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN) != 0 ||
      g_error_matches(error.get(), G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) != 0;
  return {absent ? ErrorKind::missing : ErrorKind::failed, 0, error->message};
}

bool readsMarkup(GVariant* capabilities) {
  const GlibVariant list(g_variant_get_child_value(capabilities, 0));
  const std::unique_ptr<const char*, GlibFree> names(g_variant_get_strv(list.get(), nullptr));
  return g_strv_contains(names.get(), "body-markup") != 0;
}

GVariant* notification(const std::string& titolo, const std::string& messaggio, bool markup) {
  const GlibText summary = validText(titolo);
  GlibText body = validText(messaggio);
  if (markup) body.reset(g_markup_escape_text(body.get(), -1));
  GVariantBuilder hints;
  g_variant_builder_init(&hints, G_VARIANT_TYPE("a{sv}"));
  g_variant_builder_add(&hints, "{sv}", "desktop-entry", g_variant_new_string(kDesktopEntry));
  return g_variant_new("(susss@asa{sv}i)", kAppName, 0U, kIcon, summary.get(), body.get(),
                       g_variant_new_strv(nullptr, 0), &hints, kDefaultExpiry);
}

}  // namespace

Result<void> NotifierLinux::notify(const std::string& titolo, const std::string& messaggio) {
  const BusConnection bus = connectToBus(sessionBusAddress(), kPatience);
  if (bus == nullptr) return Error{ErrorKind::missing, 0, "no message bus"};
  GlibError error;
  const GlibVariant capabilities =
      callBus(bus.get(), {kService, kPath, kService, "GetCapabilities"}, nullptr, "(as)", kPatience,
              &error);
  if (capabilities == nullptr) return failure(error);
  const GlibVariant reply = callBus(
      bus.get(), {kService, kPath, kService, "Notify"},
      notification(titolo, messaggio, readsMarkup(capabilities.get())), "(u)", kPatience, &error);
  if (reply == nullptr) return failure(error);
  return {};
}

}  // namespace pellak::native
