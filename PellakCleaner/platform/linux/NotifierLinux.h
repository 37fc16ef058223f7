#pragma once

#include "platform/Notifier.h"

namespace pellak::native {

/// Notifications through the desktop's service (org.freedesktop.Notifications) on the session bus.
/// Waits at most about three seconds for each of its answers.
class NotifierLinux final : public Notifier {
 public:
  Result<void> notify(const std::string& titolo, const std::string& messaggio) override;
};

}  // namespace pellak::native
