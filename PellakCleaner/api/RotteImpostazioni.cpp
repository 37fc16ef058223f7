#include "PellakCore/base/JsonWriter.h"
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

}  // namespace

Risposta settings(Servizi& servizi, Json corpo) {
  Impostazioni& impostazioni = servizi.impostazioni;
  if (corpo.quanti() == 0) return valori(impostazioni.leggi(), true);
  const Result<Config> esito =
      corpo.booleano("reset", false) ? impostazioni.azzera() : impostazioni.scrivi(corpo);
  if (!esito) return errore("scrittura non riuscita", 500);
  return valori(*esito, false);
}

}  // namespace pellak::api::gestori
