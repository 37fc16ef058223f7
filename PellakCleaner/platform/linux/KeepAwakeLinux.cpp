#include "platform/linux/KeepAwakeLinux.h"

#include <array>
#include <gio/gunixfdlist.h>
#include <utility>

#include "platform/linux/BusConnection.h"
#include "platform/linux/SessionBus.h"
#include "platform/posix/Descriptor.h"

namespace pellak::native {
namespace {

using namespace std::chrono_literals;

constexpr auto kPatience = 1s;
constexpr const char* kName = "Pellak Cleaner";
constexpr const char* kScreenSaver = "org.freedesktop.ScreenSaver";
/// The second one is where some desktops had it first.
constexpr std::array<const char*, 2> kScreenSaverPaths = {"/org/freedesktop/ScreenSaver",
                                                          "/ScreenSaver"};

std::string systemBusAddress() {
  const GlibText address(g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr));
  return address == nullptr ? std::string() : std::string(address.get());
}

}  // namespace

/// Lasts as long as the connection of the screen saver's client, or the session manager's
/// descriptor.
class KeepAwakeLinux::Inhibition {
 public:
  Inhibition(BusConnection bus, const char* path, guint32 cookie)
      : bus_(std::move(bus)), path_(path), cookie_(cookie) {}
  explicit Inhibition(int descriptor) : descriptor_(descriptor) {}
  ~Inhibition() {
    if (bus_ == nullptr) return;
    callBus(bus_.get(), {kScreenSaver, path_, kScreenSaver, "UnInhibit"},
            g_variant_new("(u)", cookie_), nullptr, kPatience);
    g_dbus_connection_close_sync(bus_.get(), nullptr, nullptr);
  }
  Inhibition(const Inhibition&) = delete;
  Inhibition& operator=(const Inhibition&) = delete;

 private:
  BusConnection bus_;
  const char* path_ = nullptr;
  guint32 cookie_ = 0;
  posix::Descriptor descriptor_;
};

KeepAwakeLinux::KeepAwakeLinux() = default;
KeepAwakeLinux::~KeepAwakeLinux() = default;

std::unique_ptr<KeepAwakeLinux::Inhibition> KeepAwakeLinux::askScreenSaver(
    const std::string& motivo) {
  BusConnection bus = connectToBus(sessionBusAddress(), kPatience);
  if (bus == nullptr) return nullptr;
  for (const char* path : kScreenSaverPaths) {
    const GlibVariant reply =
        callBus(bus.get(), {kScreenSaver, path, kScreenSaver, "Inhibit"},
                g_variant_new("(ss)", kName, validText(motivo).get()), "(u)", kPatience);
    if (reply == nullptr) continue;
    guint32 cookie = 0;
    g_variant_get(reply.get(), "(u)", &cookie);
    return std::make_unique<Inhibition>(std::move(bus), path, cookie);
  }
  return nullptr;
}

std::unique_ptr<KeepAwakeLinux::Inhibition> KeepAwakeLinux::askSessionManager(
    const std::string& motivo) {
  const BusConnection bus = connectToBus(systemBusAddress(), kPatience);
  if (bus == nullptr) return nullptr;
  GUnixFDList* received = nullptr;
  const GlibVariant reply(g_dbus_connection_call_with_unix_fd_list_sync(
      bus.get(), "org.freedesktop.login1", "/org/freedesktop/login1",
      "org.freedesktop.login1.Manager", "Inhibit",
      g_variant_new("(ssss)", "idle", kName, validText(motivo).get(), "block"),
      G_VARIANT_TYPE("(h)"), G_DBUS_CALL_FLAGS_NONE,
      static_cast<int>(std::chrono::milliseconds(kPatience).count()), nullptr, &received, nullptr,
      nullptr));
  const GlibObject<GUnixFDList> descriptors(received);
  if (reply == nullptr || descriptors == nullptr) return nullptr;
  gint32 place = 0;
  g_variant_get(reply.get(), "(h)", &place);
  const int descriptor = g_unix_fd_list_get(descriptors.get(), place, nullptr);
  return descriptor < 0 ? nullptr : std::make_unique<Inhibition>(descriptor);
}

std::optional<std::uint32_t> KeepAwakeLinux::acquire(const std::string& motivo) {
  std::unique_ptr<Inhibition> inhibition = askScreenSaver(motivo);
  if (inhibition == nullptr) inhibition = askSessionManager(motivo);
  if (inhibition == nullptr) return {};
  held_[++last_] = std::move(inhibition);
  return last_;
}

void KeepAwakeLinux::release(std::uint32_t id) { held_.erase(id); }

}  // namespace pellak::native
