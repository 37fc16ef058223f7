#pragma once

#include <string>
#include <vector>

namespace pellak::app {

class Applicazione;

struct OpzioniScan {
  /// Sections, none meaning all of the catalogue, and folders in which duplicates and large files
  /// are looked for as well: those begin with "/", "~" or ".".
  std::vector<std::string> argomenti;
  bool json = false;
};

/// Scans, showing progress on a terminal, and prints the table or the final state reply. The
/// process's exit status: 0; 2 for an unknown section or folder; 130 when interrupted.
int comandoScan(Applicazione& applicazione, const OpzioniScan& opzioni);

}  // namespace pellak::app
