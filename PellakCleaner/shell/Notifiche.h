#pragma once

#include <string>
#include <string_view>

#include "commands/Comandi.h"
#include "platform/Notifier.h"
#include "platform/ToolFamily.h"

namespace pellak::shell {

/// Tells the user something while the window may be closed. Any thread; blocks until the system
/// has taken the message.
class Notifiche {
 public:
  /// Comandi and notifier outlive it; the first serves the macOS family, the other the Linux one.
  Notifiche(Comandi& comandi, Notifier& notifier, FamigliaStrumenti famiglia)
      : comandi_(comandi), notifier_(notifier), famiglia_(famiglia) {}

  /// Nothing on success, otherwise an Italian fragment.
  std::string mostra(const std::string& messaggio, const std::string& titolo);

 private:
  Comandi& comandi_;
  Notifier& notifier_;
  const FamigliaStrumenti famiglia_;
};

/// The script that shows a notification, with both texts escaped for AppleScript.
std::string scriptNotifica(std::string_view messaggio, std::string_view titolo);

}  // namespace pellak::shell
