#include "app/SceltaCestino.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "PellakCore/base/JsonWriter.h"

namespace pellak::app {
namespace {

using Indici = std::vector<std::int64_t>;

const Group& gruppoDi(const Finding& finding, std::int64_t indice) {
  return finding.groups[static_cast<std::size_t>(indice)];
}

std::vector<std::string> tranne(const Group& gruppo, std::size_t tenuta) {
  std::vector<std::string> altre = gruppo.paths;
  std::erase(altre, gruppo.paths[tenuta]);
  return altre;
}

/// The copy that the request keeps; nothing when it is going to refuse the group.
std::optional<std::size_t> tenuta(const Group& gruppo, bool nominato, const trash::Copie& copie) {
  for (std::size_t copia = 0; copia < gruppo.paths.size(); ++copia) {
    const bool resta = nominato
                           ? copie.esiste(gruppo.paths[copia])
                           : copie.conservabile(gruppo, copia, tranne(gruppo, copia)).has_value();
    if (resta) return copia;
  }
  return {};
}

void aggiungiCopie(SceltaCestino& scelta, const Group& gruppo, bool nominato,
                   const trash::Copie& copie) {
  const auto resta = tenuta(gruppo, nominato, copie);
  if (!resta) return;
  for (std::string& via : tranne(gruppo, *resta)) {
    if (copie.esiste(via)) scelta.voci.push_back({std::move(via), gruppo.size});
  }
}

void aggiungiTutti(SceltaCestino& scelta, const Group& gruppo) {
  for (std::size_t i = 0; i < gruppo.paths.size(); ++i) {
    const std::int64_t intero = gruppo.pesi.empty() && i == 0 ? gruppo.size : 0;
    scelta.voci.push_back({gruppo.paths[i], i < gruppo.pesi.size() ? gruppo.pesi[i] : intero});
  }
}

std::string primo(const Finding& finding, std::int64_t indice) {
  const auto quanti = static_cast<std::int64_t>(finding.groups.size());
  if (indice >= quanti || gruppoDi(finding, indice).paths.empty()) return {};
  return gruppoDi(finding, indice).paths.front();
}

/// A request for one group, which names the group's first path as it is here.
RichiestaCestino perGruppo(const char* rotta, const Finding& finding, std::int64_t indice) {
  JsonWriter corpo;
  corpo.beginObject().key("id").text(finding.id).key("group").integer(indice);
  corpo.key("first").text(primo(finding, indice)).endObject();
  return {rotta, corpo.take(), {}};
}

RichiestaCestino perGruppi(const Finding& finding, const Indici& gruppi) {
  JsonWriter corpo;
  corpo.beginObject().key("id").text(finding.id).key("groups").beginArray();
  for (const std::int64_t indice : gruppi) corpo.integer(indice);
  corpo.endArray().endObject();
  return {"/api/trash_sel", corpo.take(), {}};
}

SceltaCestino interaCategoria(const Finding& finding, const trash::Copie& copie) {
  SceltaCestino scelta;
  if (finding.duplicati()) {
    scelta.richieste.push_back({"/api/keep_all", "{}", {}});
    scelta.rifiutata = finding.groups.empty();
    for (const Group& gruppo : finding.groups) aggiungiCopie(scelta, gruppo, false, copie);
    return scelta;
  }
  JsonWriter corpo;
  corpo.beginObject().key("id").text(finding.id).endObject();
  scelta.richieste.push_back({"/api/trash", corpo.take(), {}});
  scelta.rifiutata = finding.mode != "delete" || finding.items.empty();
  for (const Voce& voce : finding.items) scelta.voci.push_back({voce.path, voce.size});
  return scelta;
}

/// The last groups first: a group that has gone moves those behind it.
SceltaCestino gruppiDiDuplicati(const Finding& finding, const Indici& gruppi,
                                const trash::Copie& copie) {
  SceltaCestino scelta;
  for (const std::int64_t indice : gruppi) {
    aggiungiCopie(scelta, gruppoDi(finding, indice), true, copie);
  }
  for (auto indice = gruppi.rbegin(); indice != gruppi.rend(); ++indice) {
    scelta.richieste.push_back(perGruppo("/api/keep", finding, *indice));
    if (gruppi.size() > 1) scelta.richieste.back().nome = "gruppo " + std::to_string(*indice);
  }
  return scelta;
}

}  // namespace

SceltaCestino scegliPerCestino(const Finding& finding, Indici gruppi, const trash::Copie& copie) {
  if (gruppi.empty()) return interaCategoria(finding, copie);
  std::sort(gruppi.begin(), gruppi.end());
  gruppi.erase(std::unique(gruppi.begin(), gruppi.end()), gruppi.end());
  if (gruppi.back() >= static_cast<std::int64_t>(finding.groups.size())) {
    SceltaCestino scelta;
    const char* rotta = finding.duplicati() ? "/api/keep" : "/api/trash_group";
    scelta.richieste.push_back(perGruppo(rotta, finding, gruppi.back()));
    scelta.rifiutata = true;
    return scelta;
  }
  if (finding.duplicati()) return gruppiDiDuplicati(finding, gruppi, copie);
  SceltaCestino scelta;
  for (const std::int64_t indice : gruppi) aggiungiTutti(scelta, gruppoDi(finding, indice));
  scelta.richieste.push_back(gruppi.size() == 1
                                 ? perGruppo("/api/trash_group", finding, gruppi.front())
                                 : perGruppi(finding, gruppi));
  return scelta;
}

std::int64_t totale(const SceltaCestino& scelta) {
  std::int64_t somma = 0;
  for (const trash::Candidato& voce : scelta.voci) somma = sommaSicura(somma, voce.size);
  return somma;
}

}  // namespace pellak::app
