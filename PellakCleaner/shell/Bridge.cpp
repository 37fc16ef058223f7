#include "shell/Bridge.h"

#include <utility>

namespace pellak::shell {

Bridge::Bridge(api::Router& router, Pagina& pagina, Comando comando)
    : router_(router), pagina_(pagina), comando_(std::move(comando)) {}

void Bridge::receive(std::string_view canale, std::shared_ptr<const JsonDocument> documento,
                     Json messaggio) {
  if (canale == "api") {
    riceviRichiesta(std::move(documento), messaggio);
  } else if (canale == "pellak") {
    const auto parola = messaggio.testo();
    if (parola && comando_) comando_(*parola);
  }
}

void Bridge::riceviRichiesta(std::shared_ptr<const JsonDocument> documento, Json messaggio) {
  const auto id = messaggio["id"].intero();
  const auto rotta = messaggio["path"].testo();
  if (!id || !rotta) return;
  const bool lenta = api::Router::codaDi(*rotta) == api::Coda::lenta;
  SerialQueue& coda = lenta ? lentoQ_ : routeQ_;
  coda.post([this, documento = std::move(documento), id = *id, rotta = *rotta,
             corpo = messaggio["body"]] {
    const api::Risposta risposta = router_.handle(rotta, corpo);
    pagina_.apiDone(id, risposta.stato, risposta.testo);
  });
}

void Bridge::attendiRisposte() {
  routeQ_.drain();
  lentoQ_.drain();
}

}  // namespace pellak::shell
