// What may be done with duplicate sets: one copy of each always stays.
#include <algorithm>
#include <iterator>
#include <set>
#include <unordered_set>
#include <utility>

#include "PellakCore/CopiaTenuta.h"
#include "PellakCore/base/BytePath.h"
#include "trash/Gruppi.h"
#include "trash/Messaggi.h"
#include "trash/OperazioniCestino.h"

namespace pellak::trash {
namespace {

constexpr const char* kDuplicati = "duplicates";
constexpr const char* kNessuna = "nessuna copia corrisponde";

/// All copies but one.
std::vector<std::size_t> tranne(const Group& gruppo, std::size_t tenuta) {
  std::vector<std::size_t> altre;
  for (std::size_t i = 0; i < gruppo.paths.size(); ++i) {
    if (gruppo.paths[i] != gruppo.paths[tenuta]) altre.push_back(i);
  }
  return altre;
}

/// Why a choice can't be meant for the group that it names; empty when it can.
std::string obiezione(const Group* gruppo, const SceltaCopia& scelta) {
  if (gruppo == nullptr) return kGruppoInesistente;
  const auto& copie = gruppo->paths;
  if (!scelta.first.empty() && (copie.empty() || copie.front() != scelta.first)) return kCambiato;
  const bool nota =
      scelta.keep.empty() || std::find(copie.begin(), copie.end(), scelta.keep) != copie.end();
  return nota ? std::string() : kNessuna;
}

}  // namespace

/// What goes when `tenuta` stays; nothing when that one may not be relied on. A copy that changed
/// since the scan is none any more and is reported in `falliti`.
std::optional<Lotto> OperazioniCestino::scarta(const Group& gruppo, std::size_t tenuta,
                                               const std::vector<std::size_t>& via,
                                               std::vector<Fallito>& falliti) const {
  std::vector<std::string> percorsi;
  percorsi.reserve(via.size());
  for (const std::size_t copia : via) percorsi.push_back(gruppo.paths[copia]);
  const auto stato = copie_.conservabile(gruppo, tenuta, percorsi);
  if (!stato) return {};
  Lotto lotto;
  for (const std::size_t copia : via) {
    const auto ora = copie_.scartabile(gruppo, copia);
    if (ora) {
      const Identita identita{ora->ino, ora->mtimeNs, ora->ctimeNs, EntryType::regular};
      lotto.voci.push_back({gruppo.paths[copia], gruppo.size, ora->size, identita});
    } else if (ora.error().kind == ErrorKind::missing) {
      lotto.voci.push_back({gruppo.paths[copia], gruppo.size});
    } else {
      falliti.push_back({gruppo.paths[copia], kCambiato});
    }
  }
  lotto.ancora = [this, percorso = gruppo.paths[tenuta], stato = *stato] {
    return copie_.ancora(percorso, stato);
  };
  return lotto;
}

/// All copies but the chosen one; without a choice, but the first in the order of the rule that
/// may be relied on.
std::optional<OperazioniCestino::Pulizia> OperazioniCestino::tieniUna(
    const Group& gruppo, const std::string& scelta, std::vector<Fallito>& falliti) const {
  for (const std::size_t copia : inOrdineDiTenuta(gruppo)) {
    if (!scelta.empty() && gruppo.paths[copia] != scelta) continue;
    if (auto lotto = scarta(gruppo, copia, tranne(gruppo, copia), falliti)) {
      return Pulizia{copia, std::move(*lotto)};
    }
  }
  return {};
}

Esito OperazioniCestino::spostaCopie(std::string_view finding, const std::string& tenuta,
                                     const Lotto& lotto, std::vector<Fallito> falliti) {
  Esito esito = sposta(finding, titoloFisso("Duplicati: " + std::string(ultimoComponente(tenuta))),
                       std::span(&lotto, 1));
  esito.failed.insert(esito.failed.begin(), std::make_move_iterator(falliti.begin()),
                      std::make_move_iterator(falliti.end()));
  return esito;
}

Esito OperazioniCestino::keep(const SceltaCopia& scelta) {
  const auto finding = engine_.finding(kDuplicati);
  if (finding && !cestinabile(*finding)) return rifiuto(kNonCestinabile);
  const Group* gruppo = gruppoDi(finding, scelta.group);
  if (auto no = obiezione(gruppo, scelta); !no.empty()) return rifiuto(std::move(no));
  std::vector<Fallito> falliti;
  const auto pulizia = tieniUna(*gruppo, scelta.keep, falliti);
  if (!pulizia) return rifiuto(kCambiato);
  return spostaCopie(kDuplicati, gruppo->paths[pulizia->tenuta], pulizia->lotto,
                     std::move(falliti));
}

Esito OperazioniCestino::keepAll(const std::optional<std::vector<SceltaCopia>>& scelte) {
  const auto finding = engine_.finding(kDuplicati);
  if (!finding || finding->groups.empty()) return rifiuto("nessun duplicato in elenco");
  if (!cestinabile(*finding)) return rifiuto(kNonCestinabile);
  if (!scelte) {
    std::vector<SceltaCopia> tutte(finding->groups.size());
    for (std::size_t i = 0; i < tutte.size(); ++i) tutte[i].group = static_cast<std::int64_t>(i);
    return pulisci(*finding, tutte);
  }
  std::set<std::int64_t> viste;
  for (const SceltaCopia& scelta : *scelte) {
    auto no = obiezione(gruppoDi(finding, scelta.group), scelta);
    if (no.empty() && !viste.insert(scelta.group).second) no = "selezione non valida";
    if (!no.empty()) return rifiuto(std::move(no));
  }
  return pulisci(*finding, *scelte);
}

Esito OperazioniCestino::pulisci(const Finding& finding, std::span<const SceltaCopia> scelte) {
  std::vector<Lotto> lotti;
  std::vector<Fallito> falliti;
  std::vector<std::string> saltati;
  std::unordered_set<std::string> tenute;
  for (const SceltaCopia& scelta : scelte) {
    const Group& gruppo = finding.groups[static_cast<std::size_t>(scelta.group)];
    if (auto pulizia = tieniUna(gruppo, scelta.keep, falliti)) {
      tenute.insert(gruppo.paths[pulizia->tenuta]);
      lotti.push_back(std::move(pulizia->lotto));
    } else {
      saltati.push_back(nomeGruppo(gruppo));
    }
  }
  std::size_t copie = 0;
  for (Lotto& lotto : lotti) {
    // A damaged results file may name one path in two groups: a kept one stays.
    std::erase_if(lotto.voci, [&](const Candidato& v) { return tenute.contains(v.percorso); });
    copie += lotto.voci.size();
  }
  Esito esito = rifiuto("niente da cestinare");
  if (copie > 0) {
    const auto titolo = [](std::size_t quante) {
      return "Duplicati: pulizia completa (" + std::to_string(quante) + " copie)";
    };
    esito = sposta(kDuplicati, titolo, lotti);
  }
  esito.failed.insert(esito.failed.begin(), std::make_move_iterator(falliti.begin()),
                      std::make_move_iterator(falliti.end()));
  esito.saltati = std::move(saltati);
  return esito;
}

Esito OperazioniCestino::dupScarta(std::string_view id, std::int64_t indice,
                                   const std::vector<std::string>& percorsi) {
  const auto finding = engine_.finding(id);
  if (finding && !cestinabile(*finding)) return rifiuto(kNonCestinabile);
  const Group* gruppo = gruppoDi(finding, indice);
  if (gruppo == nullptr) return rifiuto(kGruppoInesistente);
  const std::set<std::string> chiesti(percorsi.begin(), percorsi.end());
  std::vector<std::size_t> via;
  std::vector<std::size_t> restano;
  for (std::size_t i = 0; i < gruppo->paths.size(); ++i) {
    (chiesti.contains(gruppo->paths[i]) ? via : restano).push_back(i);
  }
  if (via.empty()) return rifiuto(kNessuna);
  std::erase_if(restano, [&](std::size_t copia) { return !copie_.esiste(gruppo->paths[copia]); });
  if (restano.empty()) return rifiuto(kUltimaCopia, kConflict);
  std::vector<Fallito> falliti;
  for (const std::size_t tenuta : restano) {
    if (const auto lotto = scarta(*gruppo, tenuta, via, falliti)) {
      return spostaCopie(id, gruppo->paths[tenuta], *lotto, std::move(falliti));
    }
  }
  return rifiuto(kCambiato);
}

}  // namespace pellak::trash
