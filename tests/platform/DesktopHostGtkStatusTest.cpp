#include <atomic>
#include <thread>

#include "platform/DesktopHostGtkScene.h"
#include "platform/FakeBusService.h"
#include "platform/PrivateBus.h"

namespace pellak::native {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr auto kPatience = 5s;
constexpr const char* kMarked =
    "{'toggle-state': <1>, 'children-display': <'submenu'>, 'toggle-type': <'checkmark'>, "
    "'label': <'Tieni__sveglio'>}";

FakeService statusWatcher() {
  return {"org.kde.StatusNotifierWatcher",
          "/StatusNotifierWatcher",
          "<node><interface name='org.kde.StatusNotifierWatcher'>"
          "<method name='RegisterStatusNotifierItem'><arg type='s' direction='in'/></method>"
          "<property name='IsStatusNotifierHostRegistered' type='b' access='read'/>"
          "</interface></node>",
          {}};
}

MenuEntry entry(std::string titolo, MenuAction azione, std::string tasto = {}) {
  MenuEntry made;
  made.titolo = std::move(titolo);
  made.azione = azione;
  made.tasto = std::move(tasto);
  return made;
}

std::vector<MenuEntry> statusMenu() {
  MenuEntry awake = entry("Tieni_sveglio", MenuAction::none);
  awake.spunta = true;
  awake.sotto = {entry("Lascia riposare", MenuAction::awakeOff)};
  return {entry("Apri", MenuAction::open, "o"), entry("Scansiona", MenuAction::scanAll, "S"),
          MenuEntry{}, awake};
}

StatRow memory(const std::string& value) {
  StatRow row;
  row.title = "Memoria";
  row.value = value;
  row.sub = "su 8 GB";
  row.fraction = 0.5;
  return row;
}

/// What a desktop's panel sees of a status item, and does to it. Not on the main thread, which has
/// to answer.
class Panel {
 public:
  explicit Panel(const std::string& address) : bus_(connectToBus(address, kPatience)) {}

  std::string property(const char* name) {
    return call(path_, "org.freedesktop.DBus.Properties", "Get",
                g_variant_new("(ss)", "org.kde.StatusNotifierItem", name));
  }
  std::string menu(const char* method, GVariant* arguments) {
    return call(path_ + "/Menu", "com.canonical.dbusmenu", method, arguments);
  }
  std::string layout() {
    return menu("GetLayout", g_variant_new("(ii@as)", 0, -1, g_variant_new_strv(nullptr, 0)));
  }
  /// Of the entry that carries this text.
  int idOf(const std::string& text) {
    const std::string all = layout();
    const std::size_t place = all.find(text);
    const std::size_t begin = all.rfind("<(", place);
    return place == std::string::npos ? -1 : std::stoi(all.substr(begin + 2));
  }
  void click(const std::string& text) {
    menu("Event", g_variant_new("(isvu)", idOf(text), "clicked", g_variant_new_int32(0), 0U));
  }

  /// The item registered with these words.
  void meet(std::string owner, std::string path) {
    owner_ = std::move(owner);
    path_ = std::move(path);
  }

 private:
  std::string call(const std::string& path, const char* interface, const char* method,
                   GVariant* arguments) {
    GlibError error;
    const GlibVariant reply = callBus(bus_.get(), {owner_.c_str(), path.c_str(), interface, method},
                                      arguments, nullptr, kPatience, &error);
    if (reply == nullptr) return error->message;
    return GlibText(g_variant_print(reply.get(), 0)).get();
  }

  BusConnection bus_;
  std::string owner_;
  std::string path_;
};

std::string chosen(MenuAction azione) { return "menu " + std::to_string(static_cast<int>(azione)); }

class DesktopHostGtkStatusTest : public DesktopHostGtkScene {};

TEST_F(DesktopHostGtkStatusTest, ThePanelShowsTheItemAndItsMenuFollows) {
  const PrivateBus bus;
  set("DBUS_SESSION_BUS_ADDRESS", bus.address());
  fakes::scriviFile(home / "engine/menubar.png", "x");
  std::mutex lock;
  std::string owner;
  std::string path;
  FakeService description = statusWatcher();
  description.answer = [&](const std::string&, GDBusMethodInvocation* call) {
    const std::lock_guard<std::mutex> hold(lock);
    owner = g_dbus_method_invocation_get_sender(call);
    const char* word = nullptr;
    g_variant_get(g_dbus_method_invocation_get_parameters(call), "(&s)", &word);
    path = word;
    g_dbus_method_invocation_return_value(call, nullptr);
  };
  std::optional<FakeBusService> watcher(std::in_place, bus.address(), description);

  Panel panel(bus.address());
  std::thread user;
  std::atomic<bool> shownLater = true;
  events.then = [&](const std::string& heard) {
    if (heard == "menu opens") host().setStatusMenu({memory("3 GB")}, statusMenu());
  };
  const auto look = [&] {
    for (int i = 0; i < 500; ++i) {
      std::this_thread::sleep_for(10ms);
      const std::lock_guard<std::mutex> hold(lock);
      if (!path.empty()) break;
    }
    panel.meet(owner, path);
    EXPECT_EQ(panel.property("Status"), "(<'Active'>,)");
    EXPECT_EQ(panel.property("IconName"), "(<'menubar'>,)");
    EXPECT_EQ(panel.property("IconThemePath"), "(<'" + (home / "engine") + "'>,)");
    EXPECT_EQ(panel.property("XAyatanaLabel"), "(<'CPU 12%'>,)");
    const std::string menu = panel.layout();
    EXPECT_THAT(menu, HasSubstr("'enabled': <false>, 'label': <'Memoria: 2 GB · su 8 GB  ▰▰▰▰▰▱"));
    EXPECT_THAT(menu, HasSubstr("'shortcut': <[['Control', 'o']]>, 'label': <'Apri'>"));
    EXPECT_THAT(menu, HasSubstr("[['Control', 'Shift', 's']]>, 'label': <'Scansiona'>"));
    EXPECT_THAT(menu, HasSubstr(kMarked));
    panel.menu("AboutToShow", g_variant_new("(i)", 0));
    EXPECT_THAT(panel.layout(), HasSubstr("3 GB")) << "read anew when the menu opens";
    panel.click("Apri");
    panel.click("Lascia riposare");
    panel.click("Tieni__sveglio");
    EXPECT_THAT(panel.layout(), HasSubstr(kMarked)) << "only the application takes the mark away";
    host().post([&] { watcher.reset(); });
    for (int i = 0; i < 100 && shownLater; ++i) {
      std::this_thread::sleep_for(100ms);
      host().post([&] { shownLater = host().setStatusMenu({}, statusMenu()); });
    }
    host().post([&] { finish(); });
  };
  const int stato = play([&] {
    host().setStatusImage(home / "engine/menubar.png", "P");
    EXPECT_TRUE(host().setStatusMenu({memory("2 GB")}, statusMenu()));
    host().setStatusTitle("CPU 12%");
    user = std::thread(look);
  });
  user.join();
  EXPECT_EQ(stato, 0);
  EXPECT_FALSE(shownLater);
  EXPECT_THAT(events.heard,
              ElementsAre("menu opens", chosen(MenuAction::open), chosen(MenuAction::awakeOff)));
}

TEST_F(DesktopHostGtkStatusTest, WithoutPanelOrBusThereIsNoItem) {
  const PrivateBus bus;
  for (const std::string& address :
       {std::string(), std::string("unix:path=/nowhere/bus"), bus.address()}) {
    set("DBUS_SESSION_BUS_ADDRESS", address);
    EXPECT_EQ(play([&] {
                host().setStatusTitle("CPU 12%");
                EXPECT_FALSE(host().setStatusMenu({memory("2 GB")}, statusMenu())) << address;
                finish();
              }),
              0);
  }
}

}  // namespace
}  // namespace pellak::native
