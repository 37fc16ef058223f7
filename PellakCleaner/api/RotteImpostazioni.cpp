#include <span>
#include <string>
#include <utility>
#include <vector>

#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/JsonWriter.h"
#include "PellakCore/base/Motivo.h"
#include "api/Gestori.h"

namespace pellak::api::gestori {
namespace {

Risposta valori(const Config& config) {
  JsonWriter uscita;
  uscita.beginObject().key("valori");
  config.scriviValori(uscita);
  return conTesto(uscita.endObject().take());
}

std::vector<std::string> esistenti(Servizi& servizi, std::span<const std::string> radici) {
  std::vector<std::string> trovate;
  for (const std::string& radice : radici) {
    std::string percorso = standardizza(radice, servizi.home);
    if (!percorso.empty() && servizi.files.exists(percorso)) trovate.push_back(std::move(percorso));
  }
  return trovate;
}

/// Values, defaults and limits, and the folders that the searches of two sections enter.
Risposta tutto(Servizi& servizi) {
  const Config config = servizi.impostazioni.leggi();
  const Regole regole = servizi.engine.effectiveRules();
  JsonWriter uscita;
  uscita.beginObject().key("valori");
  config.scriviValori(uscita);
  uscita.key("default");
  Config::scriviPredefiniti(uscita);
  uscita.key("limiti");
  Config::scriviLimiti(uscita);
  uscita.key("radici").beginObject();
  uscita.key("duplicati").texts(esistenti(servizi, regole.duplicati.roots));
  uscita.key("grandi").texts(esistenti(servizi, regole.grandi.roots)).endObject();
  return conTesto(uscita.endObject().take());
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
  if (corpo.quanti() == 0) return tutto(servizi);
  const Result<Config> esito =
      corpo.booleano("reset", false) ? impostazioni.azzera() : impostazioni.scrivi(corpo);
  if (!esito) return nonScritte(esito.error());
  return valori(*esito);
}

}  // namespace pellak::api::gestori
