#include "app/Trattenuti.h"

#include <set>

#include "PellakCore/base/BytePath.h"
#include "app/Terminale.h"
#include "app/Uscita.h"

namespace pellak::app {

void stampaTrattenuti(const std::vector<Trattenuto>& trattenuti, const std::string& home) {
  if (trattenuti.empty()) return;
  std::set<std::string> detti;
  stampa("\nLasciati fuori:\n");
  for (const Trattenuto& trattenuto : trattenuti) {
    if (!detti.insert(trattenuto.percorso).second) continue;
    stampa("  " + perTerminale(percorsoMostrato(trattenuto.percorso, home)) + ": " +
           perTerminale(trattenuto.perche) + "\n");
  }
}

}  // namespace pellak::app
