#include "shell/Bridge.h"

#include <algorithm>
#include <exception>
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
  try {
    coda.post([this, documento = std::move(documento), id = *id, rotta = *rotta,
               corpo = messaggio["body"]] {
      const api::Risposta risposta = router_.handle(rotta, corpo);
      pagina_.apiDone(id, risposta.stato, risposta.testo);
    });
  } catch (const std::exception&) {
    // No thread or no memory to run it with: the page must hear of it all the same.
    const api::Risposta rifiuto = api::errore("richiesta non valida", 500);
    pagina_.apiDone(*id, rifiuto.stato, rifiuto.testo);
  }
}

void Bridge::attendiRisposte() {
  routeQ_.drain();
  lentoQ_.drain();
}

bool Bridge::attendiRisposte(std::chrono::milliseconds attesa) {
  const auto limite = std::chrono::steady_clock::now() + attesa;
  if (!routeQ_.drainFor(attesa)) return false;
  const auto resto = std::chrono::duration_cast<std::chrono::milliseconds>(
      limite - std::chrono::steady_clock::now());
  return lentoQ_.drainFor(std::max(resto, std::chrono::milliseconds(0)));
}

std::size_t Bridge::inAttesa() { return routeQ_.inAttesa() + lentoQ_.inAttesa(); }

}  // namespace pellak::shell
