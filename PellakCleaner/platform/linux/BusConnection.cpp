#include "platform/linux/BusConnection.h"

#include "platform/linux/Deadline.h"

namespace pellak::native {

BusConnection connectToBus(const std::string& address, std::chrono::milliseconds patience) {
  if (address.empty()) return nullptr;
  const Deadline deadline(patience);
  const auto flags =
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  return BusConnection(g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr,
                                                              deadline.cancellable(), nullptr));
}

GlibVariant callBus(GDBusConnection* bus, const BusMethod& method, GVariant* arguments,
                    const char* replyType, std::chrono::milliseconds patience, GlibError* error) {
  GError* reason = nullptr;
  GlibVariant reply(g_dbus_connection_call_sync(
      bus, method.name, method.path, method.interface, method.method, arguments,
      replyType == nullptr ? nullptr : G_VARIANT_TYPE(replyType), G_DBUS_CALL_FLAGS_NONE,
      static_cast<int>(patience.count()), nullptr, &reason));
  GlibError owned(reason);
  if (error != nullptr) *error = std::move(owned);
  return reply;
}

GlibText validText(const std::string& text) {
  return GlibText(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
}

}  // namespace pellak::native
