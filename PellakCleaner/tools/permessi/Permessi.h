#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "commands/Comandi.h"
#include "platform/Files.h"
#include "platform/Result.h"
#include "platform/ToolFamily.h"

namespace pellak::permessi {

/// A place whose contents the scans need and the system may withhold.
struct Luogo {
  std::string nome;      ///< for the user
  std::string percorso;  ///< absolute, bytes
  bool leggibile = false;
  bool negato = false;  ///< the system refuses it (EPERM, EACCES), as opposed to any other failure
};

/// The protected places that exist, in a fixed order, each tried by opening it. On macOS these
/// are the places that only Full Disk Access opens; touching them also puts the application on
/// the list where the user grants it. Any thread; may block on a slow volume.
std::vector<Luogo> luoghi(Files& files, FamigliaStrumenti famiglia, std::string_view home);

/// Opens the system's list where the user grants Full Disk Access. Nothing on success, otherwise
/// an Italian fragment: a system without such a list offers nothing.
std::optional<std::string> apriAccessoCompleto(Comandi& comandi, FamigliaStrumenti famiglia);

/// Whether this application may control another one, by asking that for its name: the first time
/// the system asks the user, and this waits for the answer. Errors: an Italian fragment.
Result<bool> automazione(Comandi& comandi, FamigliaStrumenti famiglia, std::string_view app);

}  // namespace pellak::permessi
