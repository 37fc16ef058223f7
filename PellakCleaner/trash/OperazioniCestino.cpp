#include "trash/OperazioniCestino.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <span>
#include <unordered_set>
#include <utility>

#include "PellakCore/base/BytePath.h"
#include "trash/Messaggi.h"

namespace pellak::trash {
namespace {

constexpr const char* kUltima = "sarebbe l'ultima copia: non la cestino";
constexpr const char* kGruppo = "gruppo inesistente";
constexpr const char* kDuplicati = "duplicates";
constexpr int kConflict = 409;

const Group* gruppoDi(const std::optional<Finding>& finding, std::int64_t indice) {
  if (!finding || indice < 0) return nullptr;
  const auto posto = static_cast<std::size_t>(indice);
  return posto < finding->groups.size() ? &finding->groups[posto] : nullptr;
}

Cestino::Titolo fisso(std::string titolo) {
  return [titolo = std::move(titolo)](std::size_t) { return titolo; };
}

void aggiungiPercorsi(const Group& gruppo, std::vector<Candidato>& voci) {
  for (std::size_t i = 0; i < gruppo.paths.size(); ++i) {
    std::int64_t size = i < gruppo.pesi.size() ? gruppo.pesi[i] : 0;
    if (gruppo.pesi.empty() && i == 0) size = gruppo.size;
    voci.push_back({gruppo.paths[i], size});
  }
}

std::string nomeGruppo(const Group& gruppo) {
  if (!gruppo.name.empty() || gruppo.paths.empty()) return gruppo.name;
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

/// All copies but one.
std::vector<std::size_t> tranne(const Group& gruppo, std::size_t tenuta) {
  std::vector<std::size_t> altre;
  for (std::size_t i = 0; i < gruppo.paths.size(); ++i) {
    if (gruppo.paths[i] != gruppo.paths[tenuta]) altre.push_back(i);
  }
  return altre;
}

/// Takes paths out of a group; whether any was in it.
bool togliPercorsi(Group& gruppo, const std::unordered_set<std::string_view>& via) {
  const std::size_t prima = gruppo.paths.size();
  for (std::size_t i = prima; i-- > 0;) {
    if (!via.contains(gruppo.paths[i])) continue;
    const auto posto = static_cast<std::ptrdiff_t>(i);
    gruppo.paths.erase(gruppo.paths.begin() + posto);
    if (i < gruppo.pesi.size()) gruppo.pesi.erase(gruppo.pesi.begin() + posto);
    if (i < gruppo.mtimesNs.size()) gruppo.mtimesNs.erase(gruppo.mtimesNs.begin() + posto);
  }
  return gruppo.paths.size() < prima;
}

}  // namespace

Esito OperazioniCestino::sposta(std::string_view finding, const Cestino::Titolo& titolo,
                                std::span<const Lotto> lotti) {
  Esito esito = cestino_.trashWithSound(titolo, lotti);
  togliDaElenco(finding, esito.mosse);
  return esito;
}

void OperazioniCestino::togliDaElenco(std::string_view finding, const std::vector<Mossa>& mosse) {
  if (mosse.empty()) return;
  std::unordered_set<std::string_view> via;
  via.reserve(mosse.size());
  for (const Mossa& mossa : mosse) via.insert(mossa.orig);
  engine_.modificaFinding(finding, [&](Finding& voce) {
    std::erase_if(voce.items, [&](const Voce& v) { return via.contains(v.path); });
    const std::size_t minimo = voce.duplicati() ? 2 : 1;
    std::erase_if(voce.groups, [&](Group& gruppo) {
      return togliPercorsi(gruppo, via) && gruppo.paths.size() < minimo;
    });
  });
}

Esito OperazioniCestino::trash(std::string_view id,
                               const std::optional<std::vector<std::string>>& solo) {
  const auto finding = engine_.finding(id);
  if (!finding) return rifiuto("categoria inesistente");
  if (finding->mode != "delete") return rifiuto("categoria non cestinabile");
  std::unordered_set<std::string> scelti;
  if (solo) scelti.insert(solo->begin(), solo->end());
  Lotto lotto;
  for (const Voce& voce : finding->items) {
    if (!solo || scelti.contains(voce.path)) lotto.voci.push_back({voce.path, voce.size});
  }
  if (lotto.voci.empty()) return rifiuto("nessun elemento trattabile");
  return sposta(id, fisso("Categoria: " + finding->name), std::span(&lotto, 1));
}

std::optional<Esito> OperazioniCestino::appAperta(const Finding& finding, const Group& gruppo,
                                                  bool chiudi) const {
  if (finding.id != "apps") return {};
  auto app = applicazioni_.find(gruppo.bundle.empty() ? gruppo.name : gruppo.bundle);
  if (!app && !gruppo.paths.empty()) app = applicazioni_.find(gruppo.paths.front());
  if (!app || !applicazioni_.running(*app)) return {};
  if (!chiudi) {
    Esito esito = rifiuto("l'app è aperta: chiudila prima di disinstallarla");
    esito.nomeApp = app->name;
    return esito;
  }
  if (applicazioni_.quit(*app)) return {};
  return rifiuto("non sono riuscito a chiudere " + app->name +
                 ": chiudila a mano dal Dock e riprova");
}

Esito OperazioniCestino::trashGroup(std::string_view id, std::int64_t indice,
                                    std::string_view first, bool chiudiPrima) {
  const auto finding = engine_.finding(id);
  const Group* gruppo = gruppoDi(finding, indice);
  if (gruppo == nullptr) return rifiuto(kGruppo);
  if (gruppo->paths.empty() || gruppo->paths.front() != first) return rifiuto(kCambiato);
  if (finding->duplicati()) return rifiuto(kUltima, kConflict);
  if (auto aperta = appAperta(*finding, *gruppo, chiudiPrima)) return *aperta;
  Lotto lotto;
  aggiungiPercorsi(*gruppo, lotto.voci);
  return sposta(id, fisso(titoloGruppo(*finding, *gruppo)), std::span(&lotto, 1));
}

Esito OperazioniCestino::trashSel(std::string_view id, std::vector<std::int64_t> gruppi,
                                  bool chiudiPrima) {
  const auto finding = engine_.finding(id);
  std::sort(gruppi.begin(), gruppi.end());
  gruppi.erase(std::unique(gruppi.begin(), gruppi.end()), gruppi.end());
  const bool valida = !gruppi.empty() &&
                      std::all_of(gruppi.begin(), gruppi.end(),
                                  [&](std::int64_t i) { return gruppoDi(finding, i) != nullptr; });
  if (!valida) return rifiuto("selezione non valida");
  if (finding->duplicati()) return rifiuto(kUltima, kConflict);
  Lotto lotto;
  std::vector<std::string> saltati;
  std::size_t presi = 0;
  for (const std::int64_t indice : gruppi) {
    const Group& gruppo = *gruppoDi(finding, indice);
    if (appAperta(*finding, gruppo, chiudiPrima)) {
      saltati.push_back(nomeGruppo(gruppo) + " (app aperta)");
      continue;
    }
    aggiungiPercorsi(gruppo, lotto.voci);
    ++presi;
  }
  Esito esito;
  if (presi > 0) {
    esito = sposta(id, fisso("Selezione multipla (" + std::to_string(presi) + " voci)"),
                   std::span(&lotto, 1));
  }
  esito.saltati = std::move(saltati);
  return esito;
}

/// What goes when `tenuta` stays; nothing when that one may not be relied on. A copy that was
/// written to since the scan is none any more and is reported in `esito`.
std::optional<Lotto> OperazioniCestino::scarta(const Group& gruppo, std::size_t tenuta,
                                               const std::vector<std::size_t>& via,
                                               Esito& esito) const {
  std::vector<std::string> percorsi;
  percorsi.reserve(via.size());
  for (const std::size_t copia : via) percorsi.push_back(gruppo.paths[copia]);
  const auto stato = copie_.conservabile(gruppo, tenuta, percorsi);
  if (!stato) return {};
  Lotto lotto;
  for (const std::size_t copia : via) {
    if (copie_.riscritta(gruppo, copia)) {
      esito.failed.push_back({gruppo.paths[copia], kCambiato});
    } else {
      lotto.voci.push_back({gruppo.paths[copia], gruppo.size});
    }
  }
  lotto.ancora = [this, percorso = gruppo.paths[tenuta], stato = *stato] {
    return copie_.ancora(percorso, stato);
  };
  return lotto;
}

Esito OperazioniCestino::scartaUno(std::string_view finding, const Group& gruppo,
                                   std::size_t tenuta, const std::vector<std::size_t>& via) {
  Esito prima;
  const auto lotto = scarta(gruppo, tenuta, via, prima);
  if (!lotto) return rifiuto(kCambiato);
  const std::string nome(ultimoComponente(gruppo.paths[tenuta]));
  Esito esito = sposta(finding, fisso("Duplicati: " + nome), std::span(&*lotto, 1));
  esito.failed.insert(esito.failed.begin(), prima.failed.begin(), prima.failed.end());
  return esito;
}

Esito OperazioniCestino::keep(std::int64_t indice, const std::string& scelta,
                              std::string_view first) {
  const auto finding = engine_.finding(kDuplicati);
  const Group* gruppo = gruppoDi(finding, indice);
  if (gruppo == nullptr) return rifiuto(kGruppo);
  const auto& copie = gruppo->paths;
  if (copie.empty() || (!first.empty() && copie.front() != first)) return rifiuto(kCambiato);
  const auto tenuta = std::find_if(copie.begin(), copie.end(), [&](const std::string& copia) {
    return scelta.empty() ? copie_.esiste(copia) : copia == scelta;
  });
  if (tenuta == copie.end()) {
    return rifiuto(scelta.empty() ? kCambiato : "nessuna copia corrisponde");
  }
  const auto posto = static_cast<std::size_t>(std::distance(copie.begin(), tenuta));
  return scartaUno(kDuplicati, *gruppo, posto, tranne(*gruppo, posto));
}

Esito OperazioniCestino::keepAll() {
  const auto finding = engine_.finding(kDuplicati);
  if (!finding || finding->groups.empty()) return rifiuto("nessun duplicato in elenco");
  std::vector<Lotto> lotti;
  Esito prima;
  std::unordered_set<std::string> tenute;
  for (const Group& gruppo : finding->groups) {
    std::optional<Lotto> lotto;
    for (std::size_t copia = 0; !lotto && copia < gruppo.paths.size(); ++copia) {
      Esito dellaCopia;
      lotto = scarta(gruppo, copia, tranne(gruppo, copia), dellaCopia);
      if (!lotto) continue;
      tenute.insert(gruppo.paths[copia]);
      std::move(dellaCopia.failed.begin(), dellaCopia.failed.end(),
                std::back_inserter(prima.failed));
    }
    if (lotto) {
      lotti.push_back(std::move(*lotto));
    } else {
      prima.saltati.push_back(nomeGruppo(gruppo));
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
    esito = sposta(
        kDuplicati,
        [](std::size_t quante) {
          return "Duplicati: pulizia completa (" + std::to_string(quante) + " copie)";
        },
        lotti);
  }
  esito.failed.insert(esito.failed.begin(), prima.failed.begin(), prima.failed.end());
  esito.saltati = std::move(prima.saltati);
  return esito;
}

Esito OperazioniCestino::dupScarta(std::string_view id, std::int64_t indice,
                                   const std::vector<std::string>& percorsi) {
  const auto finding = engine_.finding(id);
  const Group* gruppo = gruppoDi(finding, indice);
  if (gruppo == nullptr) return rifiuto(kGruppo);
  const std::set<std::string> chiesti(percorsi.begin(), percorsi.end());
  std::vector<std::size_t> via;
  std::vector<std::size_t> restano;
  for (std::size_t i = 0; i < gruppo->paths.size(); ++i) {
    (chiesti.contains(gruppo->paths[i]) ? via : restano).push_back(i);
  }
  if (via.empty()) return rifiuto("nessuna copia corrisponde");
  std::erase_if(restano, [&](std::size_t copia) { return !copie_.esiste(gruppo->paths[copia]); });
  if (restano.empty()) return rifiuto(kUltima, kConflict);
  Esito esito = rifiuto(kCambiato);
  for (std::size_t i = 0; i < restano.size() && esito.err == kCambiato; ++i) {
    esito = scartaUno(id, *gruppo, restano[i], via);
  }
  return esito;
}

}  // namespace pellak::trash
