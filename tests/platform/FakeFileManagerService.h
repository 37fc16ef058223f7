#pragma once

#include <chrono>
#include <gio/gio.h>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/linux/GlibPtr.h"

namespace pellak::native {

/// Answers as org.freedesktop.FileManager1 on the bus at `address`, on a thread of its own.
class FakeFileManagerService {
 public:
  explicit FakeFileManagerService(const std::string& address)
      : context_(g_main_context_new()), loop_(g_main_loop_new(context_, 0)) {
    thread_ = std::thread([this, address] { serve(address); });
    while (!ready()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  ~FakeFileManagerService() {
    g_main_loop_quit(loop_);
    thread_.join();
    g_main_loop_unref(loop_);
    g_main_context_unref(context_);
  }
  FakeFileManagerService(const FakeFileManagerService&) = delete;
  FakeFileManagerService& operator=(const FakeFileManagerService&) = delete;

  std::vector<std::string> shown() {
    const std::lock_guard<std::mutex> hold(lock_);
    return shown_;
  }

 private:
  bool ready() {
    const std::lock_guard<std::mutex> hold(lock_);
    return ready_;
  }

  void serve(const std::string& address) {
    static constexpr const char* kDescription =
        "<node><interface name='org.freedesktop.FileManager1'><method name='ShowItems'>"
        "<arg type='as' direction='in'/><arg type='s' direction='in'/>"
        "</method></interface></node>";
    g_main_context_push_thread_default(context_);
    const auto flags =
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    {
      const GlibObject<GDBusConnection> bus(g_dbus_connection_new_for_address_sync(
          address.c_str(), flags, nullptr, nullptr, nullptr));
      GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(kDescription, nullptr);
      static constexpr GDBusInterfaceVTable kTable{onCall, nullptr, nullptr, {}};
      g_dbus_connection_register_object(bus.get(), "/org/freedesktop/FileManager1",
                                        node->interfaces[0], &kTable, this, nullptr, nullptr);
      GVariant* owned = g_dbus_connection_call_sync(
          bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
          "RequestName", g_variant_new("(su)", "org.freedesktop.FileManager1", 0U), nullptr,
          G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
      g_variant_unref(owned);
      {
        const std::lock_guard<std::mutex> hold(lock_);
        ready_ = true;
      }
      g_main_loop_run(loop_);
      g_dbus_connection_close_sync(bus.get(), nullptr, nullptr);
      g_dbus_node_info_unref(node);
    }
    g_main_context_pop_thread_default(context_);
  }

  static void onCall(GDBusConnection*, const char*, const char*, const char*, const char*,
                     GVariant* parameters, GDBusMethodInvocation* call, void* self) {
    auto* service = static_cast<FakeFileManagerService*>(self);
    {
      const std::lock_guard<std::mutex> hold(service->lock_);
      GVariantIter* items = nullptr;
      const char* id = nullptr;
      g_variant_get(parameters, "(as&s)", &items, &id);
      const char* item = nullptr;
      while (g_variant_iter_next(items, "&s", &item)) service->shown_.emplace_back(item);
      g_variant_iter_free(items);
    }
    g_dbus_method_invocation_return_value(call, nullptr);
  }

  GMainContext* context_;
  GMainLoop* loop_;
  std::mutex lock_;
  bool ready_ = false;
  std::vector<std::string> shown_;
  std::thread thread_;
};

}  // namespace pellak::native
