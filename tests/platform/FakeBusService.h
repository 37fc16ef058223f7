#pragma once

#include <chrono>
#include <functional>
#include <gio/gio.h>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/BusConnection.h"

namespace pellak::native {

/// What a made-up service is and how it answers.
struct FakeService {
  std::string name;
  std::string path;
  std::string description;  ///< its interface, as introspection data
  /// Answers a call; without it the reply is empty. On the service's own thread.
  std::function<void(const std::string& method, GDBusMethodInvocation* call)> answer;
  /// The value of every property.
  bool property = true;
};

/// What shows a notification on a desktop.
inline FakeService notificationService() {
  return {"org.freedesktop.Notifications",
          "/org/freedesktop/Notifications",
          "<node><interface name='org.freedesktop.Notifications'><method name='GetCapabilities'>"
          "<arg type='as' direction='out'/></method><method name='Notify'>"
          "<arg type='s' direction='in'/><arg type='u' direction='in'/>"
          "<arg type='s' direction='in'/><arg type='s' direction='in'/>"
          "<arg type='s' direction='in'/><arg type='as' direction='in'/>"
          "<arg type='a{sv}' direction='in'/><arg type='i' direction='in'/>"
          "<arg type='u' direction='out'/></method></interface></node>",
          {}};
}

/// Answers on the bus at `address`, on a thread of its own, and writes down what it was asked.
class FakeBusService {
 public:
  FakeBusService(const std::string& address, FakeService service)
      : service_(std::move(service)),
        context_(g_main_context_new()),
        loop_(g_main_loop_new(context_, 0)) {
    thread_ = std::thread([this, address] { serve(address); });
    while (!ready()) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  ~FakeBusService() {
    g_main_loop_quit(loop_);
    thread_.join();
    g_main_loop_unref(loop_);
    g_main_context_unref(context_);
  }
  FakeBusService(const FakeBusService&) = delete;
  FakeBusService& operator=(const FakeBusService&) = delete;

  /// Each as its method and arguments, in GVariant's text form.
  std::vector<std::string> calls() {
    const std::lock_guard<std::mutex> hold(lock_);
    return calls_;
  }

 private:
  bool ready() {
    const std::lock_guard<std::mutex> hold(lock_);
    return ready_;
  }

  void serve(const std::string& address) {
    g_main_context_push_thread_default(context_);
    if (const BusConnection bus = connectToBus(address, std::chrono::seconds(5))) {
      static constexpr GDBusInterfaceVTable kTable{onCall, onGet, nullptr, {}};
      GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(service_.description.c_str(), nullptr);
      g_dbus_connection_register_object(bus.get(), service_.path.c_str(), node->interfaces[0],
                                        &kTable, this, nullptr, nullptr);
      callBus(
          bus.get(),
          {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName"},
          g_variant_new("(su)", service_.name.c_str(), 0U), nullptr, std::chrono::seconds(5));
      becomeReady();
      g_main_loop_run(loop_);
      g_dbus_connection_close_sync(bus.get(), nullptr, nullptr);
      g_dbus_node_info_unref(node);
    }
    becomeReady();
    g_main_context_pop_thread_default(context_);
  }

  void becomeReady() {
    const std::lock_guard<std::mutex> hold(lock_);
    ready_ = true;
  }

  static void onCall(GDBusConnection*, const char*, const char*, const char*, const char* method,
                     GVariant* parameters, GDBusMethodInvocation* call, void* raw) {
    auto* self = static_cast<FakeBusService*>(raw);
    const GlibText text(g_variant_print(parameters, 0));
    {
      const std::lock_guard<std::mutex> hold(self->lock_);
      self->calls_.push_back(std::string(method) + text.get());
    }
    if (self->service_.answer) return self->service_.answer(method, call);
    g_dbus_method_invocation_return_value(call, nullptr);
  }

  static GVariant* onGet(GDBusConnection*, const char*, const char*, const char*, const char*,
                         GError**, void* raw) {
    return g_variant_new_boolean(static_cast<FakeBusService*>(raw)->service_.property ? 1 : 0);
  }

  FakeService service_;
  GMainContext* context_;
  GMainLoop* loop_;
  std::mutex lock_;
  bool ready_ = false;
  std::vector<std::string> calls_;
  std::thread thread_;
};

}  // namespace pellak::native
