#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/Files.h"
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

}  // namespace pellak::permessi
