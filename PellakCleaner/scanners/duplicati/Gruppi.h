#pragma once

#include <vector>

#include "PellakCore/Finding.h"
#include "scanners/duplicati/Contenuti.h"
#include "scanners/duplicati/Svantaggi.h"

namespace pellak::scanners {

/// The groups of files known to be equal, most recoverable bytes first. The list is one as
/// `tieniUguali` leaves it; what it and the candidates hold is freed as the groups grow.
std::vector<Group> gruppiDi(std::vector<Contenuto> contenuti, std::vector<Candidato> candidati,
                            const Candidati& testi, Svantaggi& svantaggi);

}  // namespace pellak::scanners
