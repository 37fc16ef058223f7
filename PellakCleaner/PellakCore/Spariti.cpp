#include "PellakCore/Spariti.h"

#include <cstddef>

namespace pellak {
namespace {

/// Whether any path was taken out.
bool togliPercorsi(Group& gruppo, bool copie,
                   const std::function<bool(std::string_view)>& sparito) {
  const std::size_t prima = gruppo.paths.size();
  const bool pesati = !copie && gruppo.scheda->pesi.size() == prima;
  for (std::size_t i = prima; i-- > 0;) {
    if (!sparito(gruppo.paths[i])) continue;
    const auto posto = static_cast<std::ptrdiff_t>(i);
    gruppo.paths.erase(gruppo.paths.begin() + posto);
    if (i < gruppo.identita.size()) gruppo.identita.erase(gruppo.identita.begin() + posto);
    gruppo.libere.togli(i);
    if (i >= gruppo.scheda->pesi.size()) continue;
    std::vector<std::int64_t>& pesi = gruppo.scheda.scrivi().pesi;
    pesi.erase(pesi.begin() + posto);
  }
  if (gruppo.paths.size() == prima) return false;
  if (pesati) {
    gruppo.size = 0;
    for (const std::int64_t peso : gruppo.scheda->pesi)
      gruppo.size = sommaSicura(gruppo.size, peso);
  }
  return true;
}

}  // namespace

bool Spariti::comprende(std::string_view percorso) const {
  for (;;) {
    if (percorsi_.contains(percorso)) return true;
    const std::size_t barra = percorso.rfind('/');
    if (barra == std::string_view::npos || barra == 0) return false;
    percorso = percorso.substr(0, barra);
  }
}

void togli(Finding& finding, const std::function<bool(std::string_view)>& sparito) {
  std::erase_if(finding.items, [&](const Voce& voce) { return sparito(voce.path); });
  const std::size_t minimo = finding.duplicati() ? 2 : 1;
  std::erase_if(finding.groups, [&](Group& gruppo) {
    return togliPercorsi(gruppo, finding.duplicati(), sparito) && gruppo.paths.size() < minimo;
  });
}

void togli(Finding& finding, const Spariti& spariti) {
  if (spariti.vuoti()) return;
  togli(finding, [&](std::string_view percorso) { return spariti.comprende(percorso); });
}

}  // namespace pellak
