#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pellak::app {

class Applicazione;

struct OpzioniTrash {
  std::string finding;
  std::vector<std::int64_t> gruppi;  ///< empty: the whole category
  bool senzaChiedere = false;
};

/// Shows what would go, asks on the terminal and moves it to the Trash. Exit status: 0; 1 when it
/// was refused (by the user too), when something could not be moved or was skipped; 2 when there
/// is no such finding; 130 when interrupted.
int comandoTrash(Applicazione& applicazione, const OpzioniTrash& opzioni);

}  // namespace pellak::app
