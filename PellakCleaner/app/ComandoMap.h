#pragma once

#include <string>

namespace pellak::app {

class Applicazione;

struct OpzioniMap {
  std::string percorso;  ///< empty: the home folder; relative ones start at the current folder
  bool json = false;
};

/// Measures a folder, showing progress on a terminal, and prints its children, largest first, as a
/// table with bars or as the reply of "/api/mappa". The process's exit status: 0; 1 when the
/// folder can't be read; 130 when interrupted.
int comandoMap(Applicazione& applicazione, const OpzioniMap& opzioni);

}  // namespace pellak::app
