#include "trash/OperazioniCestino.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <set>
#include <span>
#include <unordered_set>
#include <utility>

#include "trash/Gruppi.h"
#include "trash/Insiemi.h"
#include "trash/Messaggi.h"

namespace pellak::trash {

Esito OperazioniCestino::sposta(std::string_view finding, const Cestino::Titolo& titolo,
                                std::span<const Lotto> lotti) {
  Esito esito = cestino_.trashWithSound(titolo, lotti);
  std::unordered_set<std::string_view> via;
  via.reserve(esito.mosse.size());
  for (const Mossa& mossa : esito.mosse) via.insert(mossa.orig);
  for (const Fallito& fallito : esito.failed) {
    if (fallito.err == kSparito) via.insert(fallito.percorso);
  }
  if (!via.empty()) engine_.togli(finding, via);
  return esito;
}

Esito OperazioniCestino::trash(std::string_view id,
                               const std::optional<std::vector<std::string>>& solo) {
  const auto finding = engine_.finding(id);
  if (!finding) return rifiuto("categoria inesistente");
  if (!cestinabile(*finding)) return rifiuto(kNonCestinabile);
  std::unordered_set<std::string> scelti;
  if (solo) scelti.insert(solo->begin(), solo->end());
  std::vector<Candidato> voci;
  for (const Voce& voce : finding->items) {
    if (solo && !scelti.contains(voce.path)) continue;
    voci.push_back({voce.path, voce.size, voce.lunghezza, voce.identita});
  }
  if (voci.empty()) return rifiuto("nessun elemento trattabile");
  return sposta(id, titoloFisso("Categoria: " + finding->name), lottiDi(std::move(voci)));
}

std::optional<Esito> OperazioniCestino::appAperta(const Finding& finding, const Group& gruppo,
                                                  bool chiudi) const {
  if (finding.id != "apps") return {};
  auto app = applicazioni_.find(gruppo.scheda->bundle.empty() ? gruppo.scheda->name
                                                              : gruppo.scheda->bundle);
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
  if (finding && !cestinabile(*finding)) return rifiuto(kNonCestinabile);
  const Group* gruppo = gruppoDi(finding, indice);
  if (gruppo == nullptr) return rifiuto(kGruppoInesistente);
  if (gruppo->paths.empty() || gruppo->paths.front() != first) return rifiuto(kCambiato);
  if (finding->duplicati()) return rifiuto(kUltimaCopia, kConflict);
  if (auto aperta = appAperta(*finding, *gruppo, chiudiPrima)) return *aperta;
  return sposta(id, titoloFisso(titoloGruppo(*finding, *gruppo)), lottiDi(*finding, *gruppo));
}

Esito OperazioniCestino::trashSel(std::string_view id, std::span<const std::int64_t> gruppi,
                                  const std::optional<std::vector<std::string>>& firsts,
                                  bool chiudiPrima) {
  constexpr const char* kNonValida = "selezione non valida";
  const auto finding = engine_.finding(id);
  if (finding && !cestinabile(*finding)) return rifiuto(kNonCestinabile);
  if (gruppi.empty() || (firsts && firsts->size() != gruppi.size())) return rifiuto(kNonValida);
  std::set<std::int64_t> scelti;
  for (std::size_t i = 0; i < gruppi.size(); ++i) {
    const Group* gruppo = gruppoDi(finding, gruppi[i]);
    if (gruppo == nullptr) return rifiuto(kNonValida);
    const bool come = !firsts || (!gruppo->paths.empty() && gruppo->paths.front() == (*firsts)[i]);
    if (!come) return rifiuto(kCambiato);
    scelti.insert(gruppi[i]);
  }
  if (finding->duplicati()) return rifiuto(kUltimaCopia, kConflict);
  std::vector<Lotto> lotti;
  std::vector<std::string> saltati;
  for (const std::int64_t indice : scelti) {
    const Group& gruppo = *gruppoDi(finding, indice);
    if (appAperta(*finding, gruppo, chiudiPrima)) {
      saltati.push_back(nomeGruppo(gruppo) + " (app aperta)");
    } else {
      std::vector<Lotto> suoi = lottiDi(*finding, gruppo);
      std::move(suoi.begin(), suoi.end(), std::back_inserter(lotti));
    }
  }
  Esito esito;
  if (const std::size_t presi = scelti.size() - saltati.size(); presi > 0) {
    esito =
        sposta(id, titoloFisso("Selezione multipla (" + std::to_string(presi) + " voci)"), lotti);
  }
  esito.saltati = std::move(saltati);
  return esito;
}

}  // namespace pellak::trash
