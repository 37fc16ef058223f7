#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "PellakCore/Finding.h"
#include "trash/Cestino.h"

namespace pellak::trash {

/// Which items belong together: a database is worth nothing without the files it keeps beside it
/// ("X-wal", "X-shm", "X-journal", "X-lock"), and old ones beside a new database ruin it.

/// The file whose companion a path is by its name; empty when it is none.
std::string_view principaleDi(std::string_view percorso);

/// The paths of a file's companions, whether they exist or not.
std::vector<std::string> compagniDi(std::string_view percorso);

/// The items in their order, each database with the companions that are among them as a set.
std::vector<Lotto> lottiDi(std::vector<Candidato> voci);

/// The same for all that moves with a group; one set where all of it belongs together.
std::vector<Lotto> lottiDi(const Finding& finding, const Group& gruppo);

/// Where an item of a set comes back to when a place is taken: report.pdf and 1 are
/// "report (ripristinato 1).pdf", report.pdf-wal "report (ripristinato 1).pdf-wal".
std::string conNumeroComune(const std::string& percorso, std::size_t numero);

/// The same for an item that stands alone.
std::string conNumero(const std::string& percorso, std::size_t numero);

}  // namespace pellak::trash
