#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "PellakCore/OrdineVoci.h"

namespace pellak::app {

class Applicazione;

struct OpzioniShow {
  std::string finding;  ///< empty: the list of findings
  OrdineVoci ordine = OrdineVoci::spazio;
  std::optional<std::int64_t> limite;
  bool json = false;
};

/// Lists the findings of the saved results, or the entries of one. Exit status 0; 2 when there is
/// no such finding.
int comandoShow(Applicazione& applicazione, const OpzioniShow& opzioni);

}  // namespace pellak::app
