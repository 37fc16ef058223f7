#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "PellakCore/base/JsonWriter.h"
#include "api/Gestori.h"
#include "trash/OperazioniCestino.h"

namespace pellak::api::gestori {
namespace {

using trash::Esito;

Risposta rifiutata(const Esito& esito) {
  JsonWriter uscita;
  uscita.beginObject().key("err").text(esito.err);
  if (!esito.nomeApp.empty()) {
    uscita.key("chiudibile").boolean(true).key("nomeApp").text(esito.nomeApp);
  }
  if (!esito.saltati.empty()) uscita.key("saltati").texts(esito.saltati);
  uscita.endObject();
  Risposta risposta = conTesto(uscita.take());
  risposta.stato = esito.stato;
  return risposta;
}

/// What moved and what did not; `saltati` and `quante` for the routes that have them.
Risposta spostata(const Esito& esito, bool saltati = false, bool quante = false) {
  if (!esito.err.empty()) return rifiutata(esito);
  const auto mosse = static_cast<std::int64_t>(esito.mosse.size());
  JsonWriter uscita;
  uscita.beginObject().key("ok").integer(mosse).key("failed").beginArray();
  for (const trash::Fallito& fallito : esito.failed) {
    uscita.beginObject().key("percorso").text(fallito.percorso);
    uscita.key("err").text(fallito.err).endObject();
  }
  uscita.endArray();
  if (!esito.avviso.empty()) uscita.key("avviso").text(esito.avviso);
  if (!esito.op.empty()) uscita.key("op").text(esito.op).key("tot").integer(esito.tot);
  if (quante) uscita.key("quante").integer(mosse);
  if (saltati) uscita.key("saltati").texts(esito.saltati);
  return conTesto(uscita.endObject().take());
}

void scriviOperazione(JsonWriter& uscita, const trash::Operazione& operazione) {
  uscita.beginObject().key("id").text(operazione.id).key("ts").number(operazione.ts);
  uscita.key("azione").text(operazione.azione).key("tot").integer(operazione.tot);
  if (!operazione.nota.empty()) uscita.key("nota").text(operazione.nota);
  uscita.key("items").beginArray();
  for (const trash::Mossa& mossa : operazione.items) {
    uscita.beginObject().key("orig").text(mossa.orig);
    if (!mossa.trash.empty()) uscita.key("trash").text(mossa.trash);
    uscita.key("rip").boolean(mossa.rip).endObject();
  }
  uscita.endArray().endObject();
}

}  // namespace

Risposta trash(Servizi& servizi, Json corpo) {
  std::optional<std::vector<std::string>> solo;
  if (corpo.contiene("items")) solo = corpo.testi("items");
  return spostata(servizi.cestino.trash(corpo.testo("id"), solo));
}

Risposta trashGroup(Servizi& servizi, Json corpo) {
  return spostata(servizi.cestino.trashGroup(corpo.testo("id"), corpo.intero("group", -1),
                                             corpo.testo("first"),
                                             corpo.booleano("chiudiPrima", false)));
}

Risposta trashSel(Servizi& servizi, Json corpo) {
  std::vector<std::int64_t> gruppi;
  corpo["groups"].perOgni([&](Json voce) { gruppi.push_back(voce.intero().value_or(-1)); });
  return spostata(servizi.cestino.trashSel(corpo.testo("id"), std::move(gruppi),
                                           corpo.booleano("chiudiPrima", false)),
                  true);
}

Risposta keep(Servizi& servizi, Json corpo) {
  return spostata(
      servizi.cestino.keep(corpo.intero("group", -1), corpo.testo("keep"), corpo.testo("first")));
}

Risposta keepAll(Servizi& servizi, Json /*corpo*/) {
  return spostata(servizi.cestino.keepAll(), true, true);
}

Risposta dupScarta(Servizi& servizi, Json corpo) {
  return spostata(servizi.cestino.dupScarta(corpo.testo("id", "duplicates"),
                                            corpo.intero("group", -1), corpo.testi("paths")));
}

Risposta restore(Servizi& servizi, Json corpo) {
  std::optional<std::int64_t> indice;
  if (corpo.contiene("index")) indice = corpo.intero("index", -1);
  const Esito esito = servizi.cestino.restore(corpo.testo("op"), indice);
  if (!esito.err.empty()) return rifiutata(esito);
  JsonWriter uscita;
  uscita.beginObject().key("ok").boolean(true);
  uscita.key("items").integer(static_cast<std::int64_t>(esito.mosse.size()));
  uscita.key("errors").texts(esito.errors).key("percorsi").texts(esito.tornati);
  if (!esito.rinominati.empty()) uscita.key("rinominati").texts(esito.rinominati);
  if (!esito.avviso.empty()) uscita.key("avviso").text(esito.avviso);
  return conTesto(uscita.endObject().take());
}

Risposta log(Servizi& servizi, Json /*corpo*/) {
  JsonWriter uscita;
  uscita.beginObject().key("ops").beginArray();
  servizi.cestino.log(
      [&](const trash::Operazione& operazione) { scriviOperazione(uscita, operazione); });
  return conTesto(uscita.endArray().endObject().take());
}

}  // namespace pellak::api::gestori
