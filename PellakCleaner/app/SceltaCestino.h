#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "PellakCore/Finding.h"
#include "trash/Cestino.h"
#include "trash/Copie.h"

namespace pellak::app {

/// One request to the router.
struct RichiestaCestino {
  std::string rotta;
  std::string corpo;  ///< a JSON object
  std::string nome;   ///< what its refusal is about, when there are several; else empty
};

/// What moving a category, or groups of it, to the Trash comes down to.
struct SceltaCestino {
  std::vector<trash::Candidato> voci;  ///< what would go
  std::int64_t libera = 0;             ///< bytes that emptying the Trash then surely frees
  std::vector<RichiestaCestino> richieste;
  /// The first request is refused, whatever lies on the disk: there is nothing to ask the user.
  bool rifiutata = false;
};

/// `gruppi` empty: the whole category. Of duplicates one copy of each group stays, and the requests
/// name it: what was shown is what goes.
SceltaCestino scegliPerCestino(const Finding& finding, std::vector<std::int64_t> gruppi,
                               const trash::Copie& copie);

/// Bytes of a choice.
std::int64_t totale(const SceltaCestino& scelta);

}  // namespace pellak::app
