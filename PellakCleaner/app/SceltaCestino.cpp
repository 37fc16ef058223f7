#include "app/SceltaCestino.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "PellakCore/CopiaTenuta.h"
#include "PellakCore/Libera.h"
#include "PellakCore/base/JsonWriter.h"
#include "trash/Gruppi.h"

namespace pellak::app {
namespace {

using Indici = std::vector<std::int64_t>;

/// A request must stay within what the router's reader takes.
constexpr std::int64_t kGruppiPerRichiesta = 20'000;

const Group& gruppoDi(const Finding& finding, std::int64_t indice) {
  return finding.groups[static_cast<std::size_t>(indice)];
}

std::vector<std::string> tranne(const Group& gruppo, std::size_t tenuta) {
  std::vector<std::string> altre = gruppo.paths;
  std::erase(altre, gruppo.paths[tenuta]);
  return altre;
}

/// What goes of a set when one copy stays. Returns the path of that copy; empty when none may be
/// relied on: the request is going to refuse the set.
std::string aggiungiCopie(SceltaCestino& scelta, const Group& gruppo, const trash::Copie& copie) {
  for (const std::size_t copia : inOrdineDiTenuta(gruppo)) {
    if (!copie.conservabile(gruppo, copia, tranne(gruppo, copia))) continue;
    for (std::size_t i = 0; i < gruppo.paths.size(); ++i) {
      const std::string& via = gruppo.paths[i];
      if (via == gruppo.paths[copia] || !copie.esiste(via)) continue;
      scelta.voci.push_back({via, gruppo.size});
      scelta.libera = sommaSicura(scelta.libera, gruppo.libere[i]);
    }
    return gruppo.paths[copia];
  }
  return {};
}

std::string primo(const Finding& finding, std::int64_t indice) {
  const auto quanti = static_cast<std::int64_t>(finding.groups.size());
  if (indice >= quanti || gruppoDi(finding, indice).paths.empty()) return {};
  return gruppoDi(finding, indice).paths.front();
}

/// What names a group, with its first path as it is here, and in a duplicate set the copy to keep.
void scriviGruppo(JsonWriter& corpo, const Finding& finding, std::int64_t indice,
                  const std::string& keep = {}) {
  corpo.key("group").integer(indice).key("first").text(primo(finding, indice));
  if (!keep.empty()) corpo.key("keep").text(keep);
}

RichiestaCestino perGruppo(const char* rotta, const Finding& finding, std::int64_t indice,
                           const std::string& keep = {}) {
  JsonWriter corpo;
  corpo.beginObject().key("id").text(finding.id);
  scriviGruppo(corpo, finding, indice, keep);
  corpo.endObject();
  return {rotta, corpo.take(), {}};
}

RichiestaCestino perGruppi(const Finding& finding, const Indici& gruppi) {
  JsonWriter corpo;
  corpo.beginObject().key("id").text(finding.id).key("groups").beginArray();
  for (const std::int64_t indice : gruppi) corpo.integer(indice);
  corpo.endArray().key("firsts").beginArray();
  for (const std::int64_t indice : gruppi) corpo.text(primo(finding, indice));
  corpo.endArray().endObject();
  return {"/api/trash_sel", corpo.take(), {}};
}

/// Every set with the copy that is going to be shown as kept; the last sets first: one that has
/// gone moves those behind it.
SceltaCestino tuttiIDuplicati(const Finding& finding, const trash::Copie& copie) {
  SceltaCestino scelta;
  const auto quanti = static_cast<std::int64_t>(finding.groups.size());
  scelta.rifiutata = quanti == 0;
  std::vector<std::string> tenute;
  for (const Group& gruppo : finding.groups) {
    tenute.push_back(aggiungiCopie(scelta, gruppo, copie));
  }
  std::int64_t fine = quanti;
  do {
    const std::int64_t inizio = std::max<std::int64_t>(fine - kGruppiPerRichiesta, 0);
    JsonWriter corpo;
    corpo.beginObject().key("scelte").beginArray();
    for (std::int64_t indice = inizio; indice < fine; ++indice) {
      corpo.beginObject();
      scriviGruppo(corpo, finding, indice, tenute[static_cast<std::size_t>(indice)]);
      corpo.endObject();
    }
    corpo.endArray().endObject();
    scelta.richieste.push_back({"/api/keep_all", corpo.take(), {}});
    fine = inizio;
  } while (fine > 0);
  return scelta;
}

SceltaCestino interaCategoria(const Finding& finding, const trash::Copie& copie) {
  if (finding.duplicati()) return tuttiIDuplicati(finding, copie);
  SceltaCestino scelta;
  JsonWriter corpo;
  corpo.beginObject().key("id").text(finding.id).endObject();
  scelta.richieste.push_back({"/api/trash", corpo.take(), {}});
  scelta.rifiutata = !trash::cestinabile(finding) || finding.items.empty();
  for (const Voce& voce : finding.items) scelta.voci.push_back({voce.path, voce.size});
  scelta.libera = libera(finding);
  return scelta;
}

SceltaCestino gruppiDiDuplicati(const Finding& finding, const Indici& gruppi,
                                const trash::Copie& copie) {
  SceltaCestino scelta;
  for (const std::int64_t indice : gruppi) {
    const std::string keep = aggiungiCopie(scelta, gruppoDi(finding, indice), copie);
    scelta.richieste.push_back(perGruppo("/api/keep", finding, indice, keep));
    if (gruppi.size() > 1) scelta.richieste.back().nome = "gruppo " + std::to_string(indice);
  }
  std::reverse(scelta.richieste.begin(), scelta.richieste.end());
  return scelta;
}

}  // namespace

SceltaCestino scegliPerCestino(const Finding& finding, Indici gruppi, const trash::Copie& copie) {
  if (gruppi.empty()) return interaCategoria(finding, copie);
  std::sort(gruppi.begin(), gruppi.end());
  gruppi.erase(std::unique(gruppi.begin(), gruppi.end()), gruppi.end());
  const bool inesistente = gruppi.back() >= static_cast<std::int64_t>(finding.groups.size());
  if (inesistente || !trash::cestinabile(finding)) {
    SceltaCestino scelta;
    const char* rotta = finding.duplicati() ? "/api/keep" : "/api/trash_group";
    scelta.richieste.push_back(perGruppo(rotta, finding, gruppi.back()));
    scelta.rifiutata = true;
    return scelta;
  }
  if (finding.duplicati()) return gruppiDiDuplicati(finding, gruppi, copie);
  SceltaCestino scelta;
  for (const std::int64_t indice : gruppi) {
    const Group& gruppo = gruppoDi(finding, indice);
    trash::aggiungiPercorsi(gruppo, scelta.voci);
    scelta.libera = sommaSicura(scelta.libera, libera(finding, gruppo));
  }
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
