#pragma once

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

#include "platform/DesktopLinux.h"
#include "platform/linux/gtk/DesktopHostGtk.h"

namespace pellak::native {

/// A screen that nobody sees, on a number of its own.
class HiddenScreen {
 public:
  HiddenScreen() {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return;
    process_ = ::fork();
    if (process_ == 0) become(ends[1]);
    ::close(ends[1]);
    // To the end of the line: the server writes it in two pieces.
    std::string line;
    for (char byte = 0; byte != '\n' && ::read(ends[0], &byte, 1) == 1;) line += byte;
    ::close(ends[0]);
    if (line.ends_with('\n')) number_ = ":" + line.substr(0, line.size() - 1);
  }
  ~HiddenScreen() {
    if (process_ <= 0) return;
    ::kill(process_, SIGTERM);
    ::waitpid(process_, nullptr, 0);
  }
  HiddenScreen(const HiddenScreen&) = delete;
  HiddenScreen& operator=(const HiddenScreen&) = delete;

  /// As the environment names it; empty when there is none.
  const std::string& number() const { return number_; }

 private:
  /// Goes with the test, however that ends.
  [[noreturn]] static void become(int report) {
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    const int number = ::dup(report);  // this one stays open
    ::dup2(::open("/dev/null", O_WRONLY | O_CLOEXEC), STDERR_FILENO);
    ::execlp("Xvfb", "Xvfb", "-displayfd", std::to_string(number).c_str(), "-screen", "0",
             "1280x900x24", "-nolisten", "tcp", "-noreset", nullptr);
    ::_exit(127);
  }

  pid_t process_ = -1;
  std::string number_;
};

/// Writes down what the host reports, and does what the test wants at it.
class RecordingEvents final : public DesktopEvents {
 public:
  void message(const std::string& canale, const std::string& json) override {
    said(canale + " " + json);
  }
  void windowWillClose() override { said("will close"); }
  void activated() override {}
  void reopened() override { said("reopened"); }
  void menuChosen(MenuAction azione) override {
    said("menu " + std::to_string(static_cast<int>(azione)));
  }
  void menuWillOpen() override { said("menu opens"); }
  void scriptAlert(const std::string& testo, std::function<void()> risposta) override {
    alerted = std::move(risposta);
    said("alert " + testo);
  }
  void scriptConfirm(const std::string& testo, std::function<void(bool)> risposta) override {
    confirmed = std::move(risposta);
    said("confirm " + testo);
  }
  void pageGone() override { said("page gone"); }

  std::vector<std::string> heard;
  std::function<void()> alerted;
  std::function<void(bool)> confirmed;
  /// Called after each report with its text.
  std::function<void(const std::string&)> then;

 private:
  void said(std::string what) {
    heard.push_back(what);
    if (then) then(what);
  }
};

/// A running host on a hidden screen.
class DesktopHostGtkScene : public DesktopLinux {
 protected:
  static constexpr int kTooLong = 99;

  void SetUp() override {
    // One for all: the toolkit connects once in its life.
    static const HiddenScreen screen;
    if (screen.number().empty()) GTEST_SKIP() << "no Xvfb";
    set("DISPLAY", screen.number());
    set("LC_ALL", "C.UTF-8");
    set("GDK_BACKEND", "x11");
    set("NO_AT_BRIDGE", "1");
    // Icons and file types, without which the toolkit does not work.
    set("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
    ::unsetenv("WAYLAND_DISPLAY");
  }

  /// Connects to screen and bus as they are now, and runs until `finish`.
  int play(const std::function<void()>& pronto) {
    instance_.emplace();
    auto connected = DesktopHostGtk::connect(*instance_);
    if (!connected) return -1;
    host_ = std::move(connected).value();
    return host_->run(events, [&] {
      host_->after(60, [this] { host_->terminate(kTooLong); });
      pronto();
    });
  }

  /// With a window that shows `html`; `then` is called once the page has said "pronta".
  int playPage(const std::string& html, std::function<void()> then) {
    return play([this, html, then = std::move(then)] {
      next("pellak \"pronta\"", then);
      host().openWindow({"Prova", 1000, 600, 780, 520}, {"pellak", "api"});
      host().loadHtml(html);
    });
  }

  /// Does `act` when the host reports `what` for the next time.
  void next(const std::string& what, std::function<void()> act) {
    events.then = [this, what, act = std::move(act)](const std::string& heard) {
      if (heard != what) return;
      const auto doing = act;
      events.then = nullptr;
      doing();
    };
  }

  void finish() { host_->terminate(0); }
  DesktopHostGtk& host() { return *host_; }

  RecordingEvents events;

 private:
  std::optional<SingleInstance> instance_;
  std::unique_ptr<DesktopHostGtk> host_;
};

}  // namespace pellak::native
