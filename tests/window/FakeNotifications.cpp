// The desktop's notification service on the bus that DBUS_SESSION_BUS_ADDRESS names: prints what it
// is asked, a line for each call, until its input ends.

#include <cstdio>
#include <cstdlib>

#include "platform/FakeBusService.h"

namespace {

constexpr const char* kDescription =
    "<node><interface name='org.freedesktop.Notifications'>"
    "<method name='GetCapabilities'><arg type='as' direction='out'/></method>"
    "<method name='Notify'><arg type='s' direction='in'/><arg type='u' direction='in'/>"
    "<arg type='s' direction='in'/><arg type='s' direction='in'/><arg type='s' direction='in'/>"
    "<arg type='as' direction='in'/><arg type='a{sv}' direction='in'/>"
    "<arg type='i' direction='in'/><arg type='u' direction='out'/></method>"
    "</interface></node>";

void answer(const std::string& method, GDBusMethodInvocation* call) {
  if (method == "GetCapabilities") {
    g_dbus_method_invocation_return_value(call, g_variant_new("(as)", nullptr));
    return;
  }
  const char* title = nullptr;
  const char* message = nullptr;
  GVariant* arguments = g_dbus_method_invocation_get_parameters(call);
  g_variant_get_child(arguments, 3, "&s", &title);
  g_variant_get_child(arguments, 4, "&s", &message);
  std::printf("%s: %s\n", title, message);
  std::fflush(stdout);
  g_dbus_method_invocation_return_value(call, g_variant_new("(u)", 1U));
}

}  // namespace

int main() {
  const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  const pellak::native::FakeBusService service(
      address == nullptr ? "" : address,
      {"org.freedesktop.Notifications", "/org/freedesktop/Notifications", kDescription, answer});
  std::puts("ready");
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  return 0;
}
