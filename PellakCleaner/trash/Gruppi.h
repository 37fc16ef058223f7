#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "PellakCore/Finding.h"
#include "trash/Cestino.h"

namespace pellak::trash {

inline constexpr const char* kGruppoInesistente = "gruppo inesistente";
inline constexpr const char* kNonCestinabile = "categoria non cestinabile";
inline constexpr const char* kUltimaCopia = "sarebbe l'ultima copia: non la cestino";
inline constexpr int kConflict = 409;

/// Whether entries of a finding may be moved at all; a report only tells.
bool cestinabile(const Finding& finding);

/// nullptr when there is no such finding or group.
const Group* gruppoDi(const std::optional<Finding>& finding, std::int64_t indice);

/// What a person calls a group.
std::string nomeGruppo(const Group& gruppo);

/// What the log calls the move of a whole group.
std::string titoloGruppo(const Finding& finding, const Group& gruppo);

/// All that moves with a group that is no duplicate set.
void aggiungiPercorsi(const Group& gruppo, std::vector<Candidato>& voci);

/// A title that does not depend on how much moves.
Cestino::Titolo titoloFisso(std::string titolo);

}  // namespace pellak::trash
