#pragma once

#include <string>
#include <vector>

namespace pellak::app {

class Applicazione;

struct OpzioniScan {
  std::vector<std::string> sezioni;  ///< none: all of the catalogue
  bool json = false;
};

/// Scans, showing progress on a terminal, and prints the table or the final state reply. The
/// process's exit status: 0; 2 for an unknown section; 130 when interrupted.
int comandoScan(Applicazione& applicazione, const OpzioniScan& opzioni);

}  // namespace pellak::app
