#include <algorithm>
#include <string>

#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/JsonWriter.h"
#include "api/Gestori.h"
#include "tools/permessi/Permessi.h"

namespace pellak::api::gestori {

Risposta perms(Servizi& servizi, Json) {
  const auto luoghi = permessi::luoghi(servizi.files, servizi.famiglia, servizi.home);
  JsonWriter uscita;
  uscita.beginObject().key("luoghi").beginArray();
  for (const permessi::Luogo& luogo : luoghi) {
    uscita.beginObject();
    uscita.key("nome").text(luogo.nome);
    uscita.key("percorso").text(percorsoMostrato(luogo.percorso, servizi.home));
    uscita.key("leggibile").boolean(luogo.leggibile);
    uscita.key("fda_denied").boolean(luogo.negato);
    uscita.endObject();
  }
  uscita.endArray();
  uscita.key("fda_denied").boolean(std::any_of(luoghi.begin(), luoghi.end(), [](const auto& luogo) {
    return luogo.negato;
  }));
  uscita.key("sistema").text(servizi.famiglia == FamigliaStrumenti::macos ? "macos" : "linux");
  uscita.key("casa").text(servizi.home);
  if (const auto disco = servizi.probe.disk(servizi.home)) {
    uscita.key("disco").beginObject();
    uscita.key("totale").integer(disco->total).key("libero").integer(disco->free);
    uscita.key("usato").integer(disco->used);
    uscita.endObject();
  }
  uscita.endObject();
  return conTesto(uscita.take());
}

Risposta permsFda(Servizi& servizi, Json) {
  const auto err = permessi::apriAccessoCompleto(servizi.comandi, servizi.famiglia);
  return err ? errore(*err) : riuscito();
}

Risposta permsAutomation(Servizi& servizi, Json corpo) {
  const auto concessa =
      permessi::automazione(servizi.comandi, servizi.famiglia, corpo.testo("app"));
  if (!concessa) return errore(concessa.error().text);
  JsonWriter uscita;
  uscita.beginObject().key("ok").boolean(true).key("automation").boolean(*concessa).endObject();
  return conTesto(uscita.take());
}

Risposta appAttiva(Servizi& servizi, Json corpo) {
  const std::string chiave = corpo.testo("bundle");
  const auto app = chiave.empty() ? std::nullopt : servizi.applicazioni.find(chiave);
  JsonWriter uscita;
  uscita.beginObject();
  uscita.key("name").text(app ? app->name : std::string());
  uscita.key("attiva").boolean(app && servizi.applicazioni.running(*app));
  uscita.endObject();
  return conTesto(uscita.take());
}

Risposta nonDisponibile(Servizi&, Json) { return errore("non disponibile"); }

}  // namespace pellak::api::gestori
