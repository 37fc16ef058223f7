#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Clock.h"
#include "platform/ProcessLauncher.h"
#include "platform/ToolFamily.h"

namespace pellak {

/// What `Comandi::esegui` returns.
struct EsitoComando {
  /// Exit status; 128 plus the signal when a signal ended the program; -1 when it could not be
  /// started.
  std::int32_t stato = -1;
  /// Output and error as they came, in one text; empty when they are not UTF-8.
  std::string testo;
};

/// What `Comandi::eseguiShell` returns.
struct EsitoShell {
  bool ok = false;     ///< the command ended by itself with exit status 0
  std::string errore;  ///< empty when `ok`; otherwise an Italian sentence fragment for the user
  std::string uscita;  ///< standard output; empty when it is not UTF-8
};

/// The programs that run a command with administrator rights, one for each tool family.
struct StrumentiAdmin {
  std::string osascript = "/usr/bin/osascript";
  std::string pkexec = "/usr/bin/pkexec";
};

/// The three ways of running other programs, each with a contract of its own.
///
/// Administrator rights come from the system, which shows its own password dialog: AppleScript's
/// "with administrator privileges" in the macOS family, polkit's pkexec in the Linux family. A
/// password is never seen here.
///
/// All three block the calling thread; none throws for what a program does. No state between
/// calls. Threads: any, concurrently.
class Comandi {
 public:
  Comandi(ProcessLauncher& launcher, Clock& clock, FamigliaStrumenti famiglia,
          StrumentiAdmin strumenti = {});

  /// Runs one program and waits for it without a limit: only for programs that end by
  /// themselves. `percorso` is absolute; no shell, so nothing needs quoting.
  EsitoComando esegui(const std::string& percorso, const std::vector<std::string>& argomenti);

  /// Runs a shell line under a limit of `limite` seconds. At the limit the command is asked to
  /// end, three seconds later it is killed; its output is then waited for at most five seconds
  /// more. Text of a process that goes on holding the output after that is only returned for a
  /// command stopped at the limit, since it may be cut anywhere.
  ///
  /// With `admin` in the macOS family backslashes in `comando` reach AppleScript as they are,
  /// so callers pass none.
  EsitoShell eseguiShell(std::string_view comando, bool admin, double limite);

  /// Runs a shell line with administrator rights and without a limit: the dialog may stay open
  /// as long as the user wants. Nothing on success, otherwise the error for the user.
  std::optional<std::string> eseguiAdmin(std::string_view comando);

 private:
  LaunchRequest rigaShell(std::string_view comando, bool admin) const;
  LaunchRequest rigaPkexec(std::string_view comando) const;
  LaunchRequest rigaAppleScript(std::string_view protetto) const;
  EsitoShell esito(std::int32_t stato, bool admin, std::string uscita,
                   std::string_view testoErrore) const;
  /// Whether the child ended within `limite` seconds.
  bool attendiFine(ChildProcess& child, double limite);
  /// The same, and stops the child when it did not.
  bool attendiOFerma(ChildProcess& child, double limite);

  ProcessLauncher& launcher_;
  Clock& clock_;
  const FamigliaStrumenti famiglia_;
  const StrumentiAdmin strumenti_;
};

}  // namespace pellak
