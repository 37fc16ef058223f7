#include "PellakCore/base/JsonWriter.h"
#include "PellakCore/base/Motivo.h"
#include "api/Gestori.h"

namespace pellak::api::gestori {
namespace {

Risposta valori(const Config& config, bool conLimiti) {
  JsonWriter uscita;
  uscita.beginObject().key("valori");
  config.scriviValori(uscita);
  if (conLimiti) {
    uscita.key("default");
    Config::scriviPredefiniti(uscita);
    uscita.key("limiti");
    Config::scriviLimiti(uscita);
  }
  uscita.endObject();
  return conTesto(uscita.take());
}

Risposta nonScritte(const Error& perche) {
  JsonWriter uscita;
  uscita.beginObject().key("err").text("scrittura non riuscita");
  uscita.key("causa").text(motivoCompleto(perche)).endObject();
  Risposta risposta = conTesto(uscita.take());
  risposta.stato = 500;
  return risposta;
}

}  // namespace

Risposta settings(Servizi& servizi, Json corpo) {
  Impostazioni& impostazioni = servizi.impostazioni;
  if (corpo.quanti() == 0) return valori(impostazioni.leggi(), true);
  const Result<Config> esito =
      corpo.booleano("reset", false) ? impostazioni.azzera() : impostazioni.scrivi(corpo);
  if (!esito) return nonScritte(esito.error());
  return valori(*esito, false);
}

}  // namespace pellak::api::gestori
