#include <sys/socket.h>
#include <sys/un.h>

#include "fakes/ScriptedLauncher.h"
#include "platform/DesktopLinux.h"
#include "platform/FakeBusService.h"
#include "platform/PrivateBus.h"
#include "platform/linux/FileManagerLinux.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/ProcessLauncherPosix.h"

namespace pellak::native {
namespace {

using namespace std::chrono_literals;

FakeService fileManager() {
  return {"org.freedesktop.FileManager1",
          "/org/freedesktop/FileManager1",
          "<node><interface name='org.freedesktop.FileManager1'><method name='ShowItems'>"
          "<arg type='as' direction='in'/><arg type='s' direction='in'/>"
          "</method></interface></node>",
          {}};
}

class FileManagerLinuxTest : public DesktopLinux {
 protected:
  FileManagerLinuxTest() { script("xdg-open", "exit 0"); }

  /// What xdg-open was asked to open.
  std::vector<std::string> opened() const {
    std::vector<std::string> items;
    for (const LaunchRequest& request : launcher.requests()) {
      EXPECT_EQ(request.argomenti.at(2), home / "bin/xdg-open");
      items.push_back(request.argomenti.at(3));
    }
    return items;
  }

  posix::ProcessLauncherPosix real;
  fakes::ScriptedLauncher launcher;
  FileManagerLinux manager{launcher};
};

TEST_F(FileManagerLinuxTest, ShowsItemsThroughTheBusWhateverTheirNames) {
  const PrivateBus bus;
  set("XDG_RUNTIME_DIR", bus.folder());  // no address: the session's bus lies there
  FakeBusService service(bus.address(), fileManager());
  const std::vector<std::string> items = {"/a b/\xff\xc3\xa9#?%41.txt", "/a\nb"};
  ASSERT_TRUE(manager.show(items).ok());
  EXPECT_EQ(service.calls(),
            std::vector<std::string>{"ShowItems(['file:///a%20b/%FF%C3%A9%23%3F%2541.txt', "
                                     "'file:///a%0Ab'], '')"});
  EXPECT_TRUE(launcher.requests().empty());
}

TEST_F(FileManagerLinuxTest, OpensEachFolderOnceWhenNobodyAnswersOnTheBus) {
  const PrivateBus bus;
  set("DBUS_SESSION_BUS_ADDRESS", bus.address());
  launcher.answerAll({});
  const std::vector<std::string> items = {"/x/a", "/x/b", "/c", "/y z/\xff"};
  ASSERT_TRUE(manager.show(items).ok());
  EXPECT_EQ(opened(), (std::vector<std::string>{"/x", "/", "/y z"}));
}

TEST_F(FileManagerLinuxTest, NeverStartsABusAndNeverHangsOnADeadOne) {
  launcher.answerAll({});
  const std::vector<std::string> items = {"/x/a"};
  for (const char* address : {"", "autolaunch:", "unix:path=/nowhere/bus", "nonsense"}) {
    set("DBUS_SESSION_BUS_ADDRESS", address);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_TRUE(manager.show(items).ok());
    EXPECT_LT(std::chrono::steady_clock::now() - before, 15s) << address;
  }
  EXPECT_EQ(opened().size(), 4U);

  // A socket that takes connections and stays silent.
  const posix::Descriptor silent(::socket(AF_UNIX, SOCK_STREAM, 0));
  sockaddr_un place{};
  place.sun_family = AF_UNIX;
  (home / "muto").copy(place.sun_path, sizeof place.sun_path - 1);
  ASSERT_EQ(::bind(silent.get(), reinterpret_cast<sockaddr*>(&place), sizeof place), 0);
  ASSERT_EQ(::listen(silent.get(), 4), 0);
  set("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + (home / "muto"));
  const auto before = std::chrono::steady_clock::now();
  EXPECT_TRUE(manager.show(items).ok());
  EXPECT_LT(std::chrono::steady_clock::now() - before, 20s);
  EXPECT_EQ(opened().size(), 5U);
}

TEST_F(FileManagerLinuxTest, WhereNobodyKnowsTheTrashItsFolderOpens) {
  set("XDG_DATA_HOME", "/dati");
  launcher.answer(
      "/bin/sh -c exec \"$0\" \"$1\" >/dev/null 2>&1 " + home / "bin/xdg-open" + " trash:///",
      {.fine = {false, 4}});
  launcher.answerAll({});
  EXPECT_TRUE(manager.openTrash().ok());
  EXPECT_EQ(opened(), (std::vector<std::string>{"trash:///", "/dati/Trash/files"}));
}

TEST_F(FileManagerLinuxTest, SaysWhenNothingCanShowOrOpen) {
  const std::vector<std::string> items = {"/x/a"};
  launcher.answerAll({.fine = {false, 3}});
  EXPECT_EQ(manager.open("/x/a").error().kind, ErrorKind::failed);
  EXPECT_EQ(manager.show(items).error().kind, ErrorKind::failed);
  set("PATH", home / "vuota");
  EXPECT_EQ(manager.open("/x/a").error().kind, ErrorKind::missing);
  const std::vector<std::string> relative = {"x"};
  for (const std::span<const std::string> bad :
       {std::span<const std::string>(), std::span<const std::string>(relative)}) {
    EXPECT_EQ(manager.show(bad).error().kind, ErrorKind::invalid);
  }
  EXPECT_EQ(manager.open("").error().kind, ErrorKind::invalid);
  EXPECT_EQ(launcher.requests().size(), 2U);
}

TEST_F(FileManagerLinuxTest, AnApplicationThatStaysOpenAndTalksLivesOn) {
  script("xdg-open", "sleep 1.3; echo avviso; echo avviso >&2; printf %s \"$1\" >\"$HOME/aperto\"");
  FileManagerLinux opening(real);
  const std::string item = home / "a $(id) '\xff";
  ASSERT_TRUE(opening.open(item).ok());
  for (int i = 0; i < 500 && fakes::leggiFile(home / "aperto").empty(); ++i) {
    std::this_thread::sleep_for(10ms);
  }
  EXPECT_EQ(fakes::leggiFile(home / "aperto"), item);
}

}  // namespace
}  // namespace pellak::native
