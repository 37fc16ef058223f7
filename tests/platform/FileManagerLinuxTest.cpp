#include <sys/socket.h>
#include <sys/un.h>

#include "fakes/ScriptedLauncher.h"
#include "platform/DesktopLinux.h"
#include "platform/FakeFileManagerService.h"
#include "platform/linux/FileManagerLinux.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/ProcessLauncherPosix.h"

namespace pellak::native {
namespace {

using namespace std::chrono_literals;

class FileManagerLinuxTest : public DesktopLinux {
 protected:
  FileManagerLinuxTest() { script("xdg-open", "exit 0"); }
  ~FileManagerLinuxTest() override {
    if (bus_ == nullptr) return;
    bus_->kill();
    bus_->wait();
  }

  /// A message bus of the test's own, where nothing is started on demand.
  std::string startBus() {
    const std::string address = "unix:path=" + (home / "bus");
    fakes::scriviFile(home / "bus.conf",
                      "<!DOCTYPE busconfig PUBLIC '-//freedesktop//DTD D-Bus Bus Configuration "
                      "1.0//EN' 'http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd'>"
                      "<busconfig><type>session</type><listen>" +
                          address +
                          "</listen><policy context='default'><allow send_destination='*'/>"
                          "<allow receive_sender='*'/><allow own='*'/></policy></busconfig>");
    LaunchRequest request;
    request.percorso = "/usr/bin/dbus-daemon";
    request.argomenti = {"--nofork", "--config-file=" + (home / "bus.conf")};
    auto started = real.start(request);
    if (!started) throw std::runtime_error("dbus-daemon");
    bus_ = std::move(*started);
    for (int i = 0; i < 500 && !std::filesystem::exists(home / "bus"); ++i) {
      std::this_thread::sleep_for(10ms);
    }
    return address;
  }

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

 private:
  std::unique_ptr<ChildProcess> bus_;
};

TEST_F(FileManagerLinuxTest, ShowsItemsThroughTheBusWhateverTheirNames) {
  FakeFileManagerService service(startBus());
  const std::vector<std::string> items = {"/a b/\xff\xc3\xa9#?%41.txt", "/a\nb"};
  ASSERT_TRUE(manager.show(items).ok());
  EXPECT_EQ(service.shown(),
            (std::vector<std::string>{"file:///a%20b/%FF%C3%A9%23%3F%2541.txt", "file:///a%0Ab"}));
  EXPECT_TRUE(launcher.requests().empty());
}

TEST_F(FileManagerLinuxTest, OpensEachFolderOnceWhenNobodyAnswersOnTheBus) {
  startBus();
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
    EXPECT_LT(std::chrono::steady_clock::now() - before, 2s) << address;
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
  EXPECT_LT(std::chrono::steady_clock::now() - before, 8s);
  EXPECT_EQ(opened().size(), 5U);
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
