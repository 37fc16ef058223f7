// The desktop's notification service on the bus that DBUS_SESSION_BUS_ADDRESS names: prints what it
// is asked, a line for each call, until its input ends.

#include <cstdio>
#include <cstdlib>

#include "platform/FakeBusService.h"

namespace {

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
  pellak::native::FakeService notifications = pellak::native::notificationService();
  notifications.answer = answer;
  const pellak::native::FakeBusService service(address == nullptr ? "" : address, notifications);
  std::puts("ready");
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  return 0;
}
