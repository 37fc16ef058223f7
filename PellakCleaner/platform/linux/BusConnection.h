#pragma once

#include <chrono>
#include <gio/gio.h>
#include <string>

#include "platform/linux/GlibPtr.h"

// For .cpp files of this folder only: the heavy headers stay out of everything else.
namespace pellak::native {

struct GlibVariantUnref {
  void operator()(GVariant* value) const { g_variant_unref(value); }
};
using GlibVariant = std::unique_ptr<GVariant, GlibVariantUnref>;
using BusConnection = GlibObject<GDBusConnection>;

/// One method of somebody on a message bus.
struct BusMethod {
  const char* name = nullptr;  ///< of the service on the bus
  const char* path = nullptr;
  const char* interface = nullptr;
  const char* method = nullptr;
};

/// Connects to the bus at `address`; null when it is empty or nobody answers there in time. The
/// end of the bus ends the connection, not the process.
BusConnection connectToBus(const std::string& address, std::chrono::milliseconds patience);

/// Calls and waits. Null on failure, with the reason in `error` when that is given; the floating
/// `arguments` are used up. `replyType` may be null for any.
GlibVariant callBus(GDBusConnection* bus, const BusMethod& method, GVariant* arguments,
                    const char* replyType, std::chrono::milliseconds patience,
                    GlibError* error = nullptr);

/// Text as the bus takes it: bytes that are no UTF-8 are shown as such.
GlibText validText(const std::string& text);

}  // namespace pellak::native
