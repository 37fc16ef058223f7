#include "platform/linux/SingleInstance.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "platform/linux/BusConnection.h"
#include "platform/linux/SessionBus.h"

namespace pellak::native {
namespace {

using namespace std::chrono_literals;

constexpr auto kConnectPatience = 1s;
constexpr auto kAnswerPatience = 5s;
constexpr guint32 kDoNotQueue = 4;
constexpr guint32 kNameIsTaken = 3;
constexpr const char* kInterface = "org.freedesktop.Application";

/// What the desktop's launcher speaks to an application that is started through the bus.
constexpr const char* kDescription =
    "<node><interface name='org.freedesktop.Application'>"
    "<method name='Activate'><arg type='a{sv}' direction='in'/></method>"
    "<method name='Open'><arg type='as' direction='in'/><arg type='a{sv}' direction='in'/></method>"
    "<method name='ActivateAction'><arg type='s' direction='in'/><arg type='av' direction='in'/>"
    "<arg type='a{sv}' direction='in'/></method>"
    "</interface></node>";

std::string pathOf(const std::string& nome) {
  std::string path = "/" + nome;
  std::replace(path.begin(), path.end(), '.', '/');
  return path;
}

GVariant* platformData() {
  GVariantBuilder data;
  g_variant_builder_init(&data, G_VARIANT_TYPE("a{sv}"));
  for (const auto& [name, key] : {std::pair{"XDG_ACTIVATION_TOKEN", "activation-token"},
                                  std::pair{"DESKTOP_STARTUP_ID", "desktop-startup-id"}}) {
    const char* value = std::getenv(name);
    if (value == nullptr || g_utf8_validate(value, -1, nullptr) == 0) continue;
    g_variant_builder_add(&data, "{sv}", key, g_variant_new_string(value));
  }
  return g_variant_new("(a{sv})", &data);
}

/// The platform data are the last argument of each method.
std::string tokenOf(GVariant* parameters) {
  const GlibVariant data(
      g_variant_get_child_value(parameters, g_variant_n_children(parameters) - 1));
  for (const char* key : {"activation-token", "desktop-startup-id"}) {
    const char* value = nullptr;
    if (g_variant_lookup(data.get(), key, "&s", &value) != 0) return value;
  }
  return {};
}

}  // namespace

struct SingleInstance::Service {
  BusConnection bus;
  guint object = 0;
  std::function<void(const std::string&)> called;

  ~Service() {
    if (object != 0) g_dbus_connection_unregister_object(bus.get(), object);
    if (bus != nullptr) g_dbus_connection_close_sync(bus.get(), nullptr, nullptr);
  }

  /// Before the name is taken, so that nobody finds the name without what belongs to it.
  void offer(const std::string& path) {
    static constexpr GDBusInterfaceVTable kTable{onCall, nullptr, nullptr, {}};
    GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(kDescription, nullptr);
    object = g_dbus_connection_register_object(bus.get(), path.c_str(), node->interfaces[0],
                                               &kTable, this, nullptr, nullptr);
    g_dbus_node_info_unref(node);
  }

  /// False when another process has the name.
  bool takeName(const std::string& nome) const {
    const GlibVariant reply = callBus(
        bus.get(),
        {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName"},
        g_variant_new("(su)", nome.c_str(), kDoNotQueue), "(u)", kConnectPatience);
    if (reply == nullptr) return true;
    guint32 answer = 0;
    g_variant_get(reply.get(), "(u)", &answer);
    return answer != kNameIsTaken;
  }

  bool activateOther(const std::string& nome, const std::string& path) const {
    const BusMethod method = {nome.c_str(), path.c_str(), kInterface, "Activate"};
    return callBus(bus.get(), method, platformData(), nullptr, kAnswerPatience) != nullptr;
  }

  static void onCall(GDBusConnection* /*bus*/, const char* /*sender*/, const char* /*path*/,
                     const char* /*interface*/, const char* /*method*/, GVariant* parameters,
                     GDBusMethodInvocation* call, void* self) {
    const auto* service = static_cast<Service*>(self);
    if (service->called) service->called(tokenOf(parameters));
    g_dbus_method_invocation_return_value(call, nullptr);
  }
};

SingleInstance::SingleInstance(const std::string& nome) {
  BusConnection bus = connectToBus(sessionBusAddress(), kConnectPatience);
  if (bus == nullptr) return;
  service_ = std::make_unique<Service>();
  service_->bus = std::move(bus);
  const std::string path = pathOf(nome);
  service_->offer(path);
  if (!service_->takeName(nome)) first_ = !service_->activateOther(nome, path);
}

SingleInstance::~SingleInstance() = default;

void SingleInstance::onActivate(std::function<void(const std::string&)> called) {
  if (service_) service_->called = std::move(called);
}

}  // namespace pellak::native
