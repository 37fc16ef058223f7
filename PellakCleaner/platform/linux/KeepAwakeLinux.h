#pragma once

#include <map>
#include <memory>

#include "platform/KeepAwake.h"

namespace pellak::native {

/// Asks the desktop's screen saver service (org.freedesktop.ScreenSaver) on the session bus, else
/// the session manager (org.freedesktop.login1) on the system bus, not to let the session go idle.
/// Both forget the request by themselves when the process ends. Waits at most about two seconds for
/// each.
class KeepAwakeLinux final : public KeepAwake {
 public:
  KeepAwakeLinux();
  ~KeepAwakeLinux() override;

  std::optional<std::uint32_t> acquire(const std::string& motivo) override;
  void release(std::uint32_t id) override;

 private:
  class Inhibition;
  static std::unique_ptr<Inhibition> askScreenSaver(const std::string& motivo);
  static std::unique_ptr<Inhibition> askSessionManager(const std::string& motivo);

  std::map<std::uint32_t, std::unique_ptr<Inhibition>> held_;
  std::uint32_t last_ = 0;
};

}  // namespace pellak::native
