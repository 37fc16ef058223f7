#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "fakes/CartellaTemporanea.h"
#include "platform/posix/ProcessLauncherPosix.h"

namespace pellak::native {

/// A message bus of the test's own, where nothing is started on demand.
class PrivateBus {
 public:
  PrivateBus() {
    fakes::scriviFile(folder_ / "bus.conf",
                      "<!DOCTYPE busconfig PUBLIC '-//freedesktop//DTD D-Bus Bus Configuration "
                      "1.0//EN' 'http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd'>"
                      "<busconfig><type>session</type><listen>" +
                          address() +
                          "</listen><policy context='default'><allow send_destination='*'/>"
                          "<allow receive_sender='*'/><allow own='*'/></policy></busconfig>");
    LaunchRequest request;
    request.percorso = "/usr/bin/dbus-daemon";
    request.argomenti = {"--nofork", "--config-file=" + (folder_ / "bus.conf")};
    auto started = launcher_.start(request);
    if (!started) throw std::runtime_error("dbus-daemon");
    daemon_ = std::move(*started);
    for (int i = 0; i < 500 && !std::filesystem::exists(folder_ / "bus"); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }
  ~PrivateBus() {
    daemon_->kill();
    daemon_->wait();
  }
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  std::string address() const { return "unix:path=" + (folder_ / "bus"); }
  const std::string& folder() const { return folder_.percorso(); }

 private:
  fakes::CartellaTemporanea folder_;
  posix::ProcessLauncherPosix launcher_;
  std::unique_ptr<ChildProcess> daemon_;
};

}  // namespace pellak::native
