#include <algorithm>
#include <set>
#include <string>

#include "PellakCore/Catalogo.h"
#include "PellakCore/StatoTesto.h"
#include "PellakCore/base/JsonWriter.h"
#include "api/Gestori.h"

namespace pellak::api::gestori {
namespace {

constexpr std::int64_t kPaginaSolita = 500;
constexpr std::int64_t kPaginaMassima = 20'000;
/// Icons drawn for one request at most; the page asks for what it shows.
constexpr std::size_t kMaxIcone = 2000;

Risposta invariato(const Snapshot& stato) {
  JsonWriter uscita;
  uscita.beginObject();
  uscita.key("ver").integer(stato.ver);
  uscita.key("busy").boolean(stato.busy);
  uscita.key("invariato").boolean(true);
  uscita.endObject();
  return conTesto(uscita.take());
}

}  // namespace

Risposta state(Servizi& servizi, Json corpo) {
  const auto stato = servizi.engine.snapshot();
  if (corpo["ver"].intero() == stato->ver) return invariato(*stato);
  return {200, stato->testo};
}

Risposta scan(Servizi& servizi, Json corpo) {
  const std::string sezione = corpo.testo("section", "all");
  if (sezione != "all" && cercaMeta(sezione) == nullptr) return errore("sezione inesistente");
  if (!servizi.engine.start(sezione)) return errore("scansione già in corso");
  return riuscito();
}

Risposta stop(Servizi& servizi, Json) {
  servizi.engine.stop();
  return riuscito();
}

Risposta voci(Servizi& servizi, Json corpo) {
  const OrdineVoci ordine = corpo.testo("ordine") == "nome" ? OrdineVoci::nome : OrdineVoci::spazio;
  const std::int64_t quante =
      std::clamp<std::int64_t>(corpo.intero("quante", kPaginaSolita), 1, kPaginaMassima);
  const auto pagina = servizi.engine.voci(corpo.testo("id"), ordine, corpo.intero("da", 0), quante);
  if (!pagina) return errore("categoria inesistente");

  JsonWriter uscita;
  FormatoData date;
  uscita.beginObject();
  uscita.key("count").integer(pagina->count);
  uscita.key("da").integer(pagina->da);
  uscita.key("items").beginArray();
  for (const Voce& voce : pagina->items) {
    scriviVoce(uscita, voce, pagina->soloReport ? 0 : voce.libera(), date);
  }
  uscita.endArray().endObject();
  return conTesto(uscita.take());
}

Risposta icon(Servizi& servizi, Json corpo) {
  JsonWriter uscita;
  uscita.beginObject();
  uscita.key("icon").text(servizi.engine.icona(corpo.testo("key")));
  uscita.endObject();
  return conTesto(uscita.take());
}

/// Only keys that have an icon are in the reply, each once.
Risposta icons(Servizi& servizi, Json corpo) {
  std::set<std::string> viste;
  JsonWriter uscita;
  uscita.beginObject().key("icons").beginObject();
  for (const std::string& chiave : corpo.testi("keys")) {
    if (viste.size() == kMaxIcone) break;
    if (!viste.insert(chiave).second) continue;
    const std::string icona = servizi.engine.icona(chiave);
    if (!icona.empty()) uscita.textKey(chiave).text(icona);
  }
  uscita.endObject().endObject();
  return conTesto(uscita.take());
}

}  // namespace pellak::api::gestori
