#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "PellakCore/base/JsonWriter.h"
#include "api/Gestori.h"
#include "trash/Messaggi.h"
#include "trash/OperazioniCestino.h"

namespace pellak::api::gestori {
namespace {

using trash::Esito;

/// Reads the keys of a request that moves something. Elsewhere a value of another type counts as
/// absent; here that would move more than was meant, so it spoils the request. Numbers need no
/// care: -1 names no group and no item.
class Severo {
 public:
  explicit Severo(Json corpo) : corpo_(corpo) {}

  std::string testo(std::string_view chiave, std::string_view altrimenti = {}) {
    const Json valore = corpo_[chiave];
    if (!valore.presente()) return std::string(altrimenti);
    auto testo = valore.testo();
    valida_ = valida_ && testo.has_value();
    return testo.value_or(std::string());
  }

  bool booleano(std::string_view chiave) {
    const Json valore = corpo_[chiave];
    valida_ = valida_ && (!valore.presente() || valore.booleano().has_value());
    return valore.booleano().value_or(false);
  }

  /// Nothing when the key is absent.
  std::optional<std::vector<std::string>> testi(std::string_view chiave) {
    const Json valore = corpo_[chiave];
    if (!valore.presente()) return {};
    auto testi = corpo_.testi(chiave);
    valida_ = valida_ && valore.lista() && testi.size() == valore.quanti();
    return testi;
  }

  bool valida() const { return valida_; }

 private:
  const Json corpo_;
  bool valida_ = true;
};

Risposta nonValida() { return errore("richiesta non valida", 400); }

std::optional<trash::SceltaCopia> leggiScelta(Json corpo) {
  Severo richiesta(corpo);
  trash::SceltaCopia scelta{corpo.intero("group", -1), richiesta.testo("first"),
                            richiesta.testo("keep")};
  return richiesta.valida() ? std::optional(std::move(scelta)) : std::nullopt;
}

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

void scriviFalliti(JsonWriter& uscita, const Esito& esito) {
  uscita.key("failed").beginArray();
  for (const trash::Fallito& fallito : esito.failed) {
    uscita.beginObject().key("percorso").text(fallito.percorso).key("err").text(fallito.err);
    if (!fallito.causa.empty() && fallito.causa != fallito.err) {
      uscita.key("causa").text(fallito.causa);
    }
    uscita.endObject();
  }
  uscita.endArray();
}

/// What moved and what did not; `saltati` and `quante` for the routes that have them.
Risposta spostata(const Esito& esito, bool saltati = false, bool quante = false) {
  if (!esito.err.empty()) return rifiutata(esito);
  const auto mosse = static_cast<std::int64_t>(esito.mosse.size());
  JsonWriter uscita;
  uscita.beginObject().key("ok").integer(mosse);
  scriviFalliti(uscita, esito);
  if (!esito.avviso.empty()) uscita.key("avviso").text(esito.avviso);
  if (!esito.op.empty()) uscita.key("op").text(esito.op).key("tot").integer(esito.tot);
  if (quante) uscita.key("quante").integer(mosse);
  if (saltati) uscita.key("saltati").texts(esito.saltati);
  return conTesto(uscita.endObject().take());
}

}  // namespace

Risposta trash(Servizi& servizi, Json corpo) {
  Severo richiesta(corpo);
  const std::string id = richiesta.testo("id");
  const auto solo = richiesta.testi("items");
  if (!richiesta.valida()) return nonValida();
  return spostata(servizi.cestino.trash(id, solo));
}

Risposta trashGroup(Servizi& servizi, Json corpo) {
  Severo richiesta(corpo);
  const std::string id = richiesta.testo("id");
  const std::string first = richiesta.testo("first");
  const bool chiudi = richiesta.booleano("chiudiPrima");
  if (!richiesta.valida()) return nonValida();
  return spostata(servizi.cestino.trashGroup(id, corpo.intero("group", -1), first, chiudi));
}

Risposta trashSel(Servizi& servizi, Json corpo) {
  Severo richiesta(corpo);
  const std::string id = richiesta.testo("id");
  const auto firsts = richiesta.testi("firsts");
  const bool chiudi = richiesta.booleano("chiudiPrima");
  if (!richiesta.valida()) return nonValida();
  std::vector<std::int64_t> gruppi;
  corpo["groups"].perOgni([&](Json voce) { gruppi.push_back(voce.intero().value_or(-1)); });
  return spostata(servizi.cestino.trashSel(id, gruppi, firsts, chiudi), true);
}

Risposta keep(Servizi& servizi, Json corpo) {
  const auto scelta = leggiScelta(corpo);
  return scelta ? spostata(servizi.cestino.keep(*scelta)) : nonValida();
}

Risposta keepAll(Servizi& servizi, Json corpo) {
  std::optional<std::vector<trash::SceltaCopia>> scelte;
  if (const Json lista = corpo["scelte"]; lista.presente()) {
    scelte.emplace();
    bool valide = lista.lista();
    lista.perOgni([&](Json voce) {
      auto scelta = voce.oggetto() ? leggiScelta(voce) : std::nullopt;
      valide = valide && scelta.has_value();
      if (scelta) scelte->push_back(std::move(*scelta));
    });
    if (!valide) return nonValida();
  }
  return spostata(servizi.cestino.keepAll(scelte), true, true);
}

Risposta dupScarta(Servizi& servizi, Json corpo) {
  Severo richiesta(corpo);
  const std::string id = richiesta.testo("id", "duplicates");
  const auto percorsi = richiesta.testi("paths");
  if (!richiesta.valida()) return nonValida();
  return spostata(servizi.cestino.dupScarta(id, corpo.intero("group", -1),
                                            percorsi.value_or(std::vector<std::string>())));
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
  if (!esito.failed.empty()) scriviFalliti(uscita, esito);
  if (!esito.rinominati.empty()) uscita.key("rinominati").texts(esito.rinominati);
  if (!esito.avviso.empty()) uscita.key("avviso").text(esito.avviso);
  return conTesto(uscita.endObject().take());
}

Risposta log(Servizi& servizi, Json /*corpo*/) {
  JsonWriter uscita;
  uscita.beginObject().key("ops").beginArray();
  const auto letto = servizi.cestino.log(
      [&](const trash::Operazione& operazione) { trash::scriviOperazione(uscita, operazione); });
  if (!letto) return errore(trash::registroNonLeggibile(letto.error()), 500);
  return conTesto(uscita.endArray().endObject().take());
}

}  // namespace pellak::api::gestori
