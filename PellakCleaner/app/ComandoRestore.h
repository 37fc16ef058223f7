#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace pellak::app {

class Applicazione;

struct OpzioniRestore {
  std::string operazione;
  std::optional<std::int64_t> indice;  ///< of one item; nothing: all of them
};

/// Puts the items of an operation back and prints which ones came back. Exit status 0; 1 when it
/// was refused or an item could not be put back.
int comandoRestore(Applicazione& applicazione, const OpzioniRestore& opzioni);

}  // namespace pellak::app
