#include <atomic>
#include <fcntl.h>
#include <gio/gunixfdlist.h>
#include <unistd.h>

#include "platform/DesktopLinux.h"
#include "platform/FakeBusService.h"
#include "platform/PrivateBus.h"
#include "platform/linux/KeepAwakeLinux.h"
#include "platform/linux/NotifierLinux.h"
#include "platform/linux/SingleInstance.h"
#include "platform/posix/Descriptor.h"

namespace pellak::native {
namespace {

using namespace std::chrono_literals;

constexpr const char* kReason = "Pellak Cleaner: tieni sveglio il Mac";

FakeService screenSaver() {
  FakeService service{"org.freedesktop.ScreenSaver",
                      "/org/freedesktop/ScreenSaver",
                      "<node><interface name='org.freedesktop.ScreenSaver'><method name='Inhibit'>"
                      "<arg type='s' direction='in'/><arg type='s' direction='in'/>"
                      "<arg type='u' direction='out'/></method><method name='UnInhibit'>"
                      "<arg type='u' direction='in'/></method></interface></node>",
                      {}};
  service.answer = [](const std::string& method, GDBusMethodInvocation* call) {
    g_dbus_method_invocation_return_value(
        call, method == "Inhibit" ? g_variant_new("(u)", 77U) : nullptr);
  };
  return service;
}

/// Hands out the writing end of a pipe, as the real one does.
FakeService sessionManager(int writingEnd) {
  FakeService service{
      "org.freedesktop.login1",
      "/org/freedesktop/login1",
      "<node><interface name='org.freedesktop.login1.Manager'><method name='Inhibit'>"
      "<arg type='s' direction='in'/><arg type='s' direction='in'/>"
      "<arg type='s' direction='in'/><arg type='s' direction='in'/>"
      "<arg type='h' direction='out'/></method></interface></node>",
      {}};
  service.answer = [writingEnd](const std::string&, GDBusMethodInvocation* call) {
    const GlibObject<GUnixFDList> list(g_unix_fd_list_new());
    const int place = g_unix_fd_list_append(list.get(), writingEnd, nullptr);
    ::close(writingEnd);
    g_dbus_method_invocation_return_value_with_unix_fd_list(call, g_variant_new("(h)", place),
                                                            list.get());
  };
  return service;
}

FakeService notifications(std::vector<const char*> capabilities) {
  FakeService service = notificationService();
  service.answer = [capabilities = std::move(capabilities)](const std::string& method,
                                                            GDBusMethodInvocation* call) {
    GVariant* list =
        g_variant_new_strv(capabilities.data(), static_cast<gssize>(capabilities.size()));
    g_variant_ref_sink(list);
    g_dbus_method_invocation_return_value(
        call, method == "Notify" ? g_variant_new("(u)", 1U) : g_variant_new("(@as)", list));
    g_variant_unref(list);
  };
  return service;
}

class SessionServicesLinuxTest : public DesktopLinux {
 protected:
  SessionServicesLinuxTest() { set("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere/bus"); }
  ~SessionServicesLinuxTest() override { ::unsetenv("DBUS_SYSTEM_BUS_ADDRESS"); }

  const std::string& sessionBus() {
    session_.emplace();
    address_ = session_->address();
    set("DBUS_SESSION_BUS_ADDRESS", address_);
    return address_;
  }

 private:
  std::optional<PrivateBus> session_;
  std::string address_;
};

TEST_F(SessionServicesLinuxTest, EachKeepAwakeIsHeldAndGivenBackOnce) {
  FakeBusService service(sessionBus(), screenSaver());
  {
    KeepAwakeLinux awake;
    const auto first = awake.acquire(kReason);
    const auto second = awake.acquire("altro \xff");
    ASSERT_TRUE(first && second);
    EXPECT_NE(*first, *second);
    awake.release(*first);
    awake.release(*first);
    awake.release(99);
    EXPECT_EQ(service.calls().size(), 3U);
  }
  const std::string inhibit = "Inhibit('Pellak Cleaner', '";
  EXPECT_EQ(service.calls(),
            (std::vector<std::string>{inhibit + kReason + "')", inhibit + "altro \uFFFD')",
                                      "UnInhibit(77,)", "UnInhibit(77,)"}));
}

TEST_F(SessionServicesLinuxTest, TheSessionManagerHoldsWhileItsDescriptorIsOpen) {
  const PrivateBus system;
  set("DBUS_SYSTEM_BUS_ADDRESS", system.address());
  int ends[2];
  ASSERT_EQ(::pipe2(ends, O_CLOEXEC | O_NONBLOCK), 0);
  const posix::Descriptor reading(ends[0]);
  FakeBusService service(system.address(), sessionManager(ends[1]));
  KeepAwakeLinux awake;
  const auto id = awake.acquire(kReason);
  ASSERT_TRUE(id);
  EXPECT_EQ(service.calls(), (std::vector<std::string>{"Inhibit('idle', 'Pellak Cleaner', '" +
                                                       std::string(kReason) + "', 'block')"}));
  char byte = 0;
  std::this_thread::sleep_for(100ms);
  EXPECT_EQ(::read(reading.get(), &byte, 1), -1) << "the other end is held";
  awake.release(*id);
  ssize_t got = -1;
  for (int i = 0; i < 500 && (got = ::read(reading.get(), &byte, 1)) == -1; ++i) {
    std::this_thread::sleep_for(10ms);
  }
  EXPECT_EQ(got, 0) << "the other end is closed";
}

TEST_F(SessionServicesLinuxTest, WithoutServicesNothingIsHeldOrShownAndNothingHangs) {
  NotifierLinux notifier;
  KeepAwakeLinux awake;
  EXPECT_EQ(notifier.notify("a", "b").error().kind, ErrorKind::missing);
  EXPECT_FALSE(awake.acquire(kReason));
  sessionBus();
  const auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(notifier.notify("a", "b").error().kind, ErrorKind::missing);
  EXPECT_FALSE(awake.acquire(kReason));
  EXPECT_LT(std::chrono::steady_clock::now() - before, 15s);
}

TEST_F(SessionServicesLinuxTest, ANotificationNeverCarriesMarkup) {
  const std::string bus = sessionBus();
  const std::string head = "Notify('Pellak Cleaner', 0, 'pellak-cleaner', 'Finito <b>', '";
  const std::string tail = "', [], {'desktop-entry': <'com.pellaklab.cleaner'>}, -1)";
  {
    FakeBusService service(bus, notifications({"body", "body-markup"}));
    ASSERT_TRUE(NotifierLinux().notify("Finito <b>", "<img onerror> & \xff").ok());
    EXPECT_EQ(service.calls().at(1), head + "&lt;img onerror&gt; &amp; \uFFFD" + tail);
  }
  FakeBusService service(bus, notifications({"body"}));
  ASSERT_TRUE(NotifierLinux().notify("Finito <b>", "<img> & è").ok());
  EXPECT_EQ(service.calls().at(1), head + "<img> & è" + tail);
}

/// Turns the main loop until the thread's work is done.
template <class Work>
void besidesMainLoop(Work work) {
  std::atomic<bool> done{false};
  std::thread thread([&] {
    work();
    done = true;
    g_main_context_wakeup(nullptr);
  });
  while (!done) g_main_context_iteration(nullptr, 1);
  thread.join();
}

TEST_F(SessionServicesLinuxTest, AFurtherStartBringsTheFirstOneToTheFront) {
  sessionBus();
  std::vector<std::string> tokens;
  std::optional<SingleInstance> first(std::in_place);
  ASSERT_TRUE(first->first());
  first->onActivate([&](const std::string& token) { tokens.push_back(token); });
  set("XDG_ACTIVATION_TOKEN", "segno-1");
  besidesMainLoop([] { EXPECT_FALSE(SingleInstance().first()); });
  ::unsetenv("XDG_ACTIVATION_TOKEN");
  EXPECT_EQ(tokens, std::vector<std::string>{"segno-1"});
  besidesMainLoop([] { EXPECT_TRUE(SingleInstance("com.pellaklab.altro").first()); });
  first.reset();
  EXPECT_TRUE(SingleInstance().first()) << "the name is free again";
}

TEST_F(SessionServicesLinuxTest, AFirstOneThatHangsDoesNotKeepTheUserFromWorking) {
  EXPECT_TRUE(SingleInstance().first()) << "no bus";
  sessionBus();
  const SingleInstance hung;  // its loop never turns
  ASSERT_TRUE(hung.first());
  EXPECT_TRUE(SingleInstance().first());
}

}  // namespace
}  // namespace pellak::native
