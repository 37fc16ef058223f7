#include "trash/Gruppi.h"

#include <cstddef>
#include <utility>

#include "PellakCore/base/BytePath.h"

namespace pellak::trash {

bool cestinabile(const Finding& finding) { return finding.mode == "delete"; }

const Group* gruppoDi(const std::optional<Finding>& finding, std::int64_t indice) {
  if (!finding || indice < 0) return nullptr;
  const auto posto = static_cast<std::size_t>(indice);
  return posto < finding->groups.size() ? &finding->groups[posto] : nullptr;
}

std::string nomeGruppo(const Group& gruppo) {
  if (!gruppo.scheda->name.empty() || gruppo.paths.empty()) return gruppo.scheda->name;
  return std::string(ultimoComponente(gruppo.paths.front()));
}

std::string titoloGruppo(const Finding& finding, const Group& gruppo) {
  const std::string nome = nomeGruppo(gruppo);
  if (finding.id == "apps" || finding.kind == "app") return "App: " + nome;
  if (finding.kind.starts_with("avvio")) return "Elemento di avvio: " + nome;
  if (finding.kind == "cache") return "Cache: " + nome;
  if (finding.id == "app-leftovers" || finding.kind == "residui") return "Residui: " + nome;
  return "Elemento: " + nome;
}

void aggiungiPercorsi(const Group& gruppo, std::vector<Candidato>& voci) {
  for (std::size_t i = 0; i < gruppo.paths.size(); ++i) {
    std::int64_t size = i < gruppo.scheda->pesi.size() ? gruppo.scheda->pesi[i] : 0;
    if (gruppo.scheda->pesi.empty() && i == 0) size = gruppo.size;
    voci.push_back({gruppo.paths[i], size});
  }
}

Cestino::Titolo titoloFisso(std::string titolo) {
  return [titolo = std::move(titolo)](std::size_t) { return titolo; };
}

}  // namespace pellak::trash
