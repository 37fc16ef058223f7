#include "api/Router.h"

#include <utility>

namespace pellak::api {
namespace {

Risposta guasto() { return errore("richiesta non valida", 500); }

/// A handler that throws has answered all the same: what follows it must still happen.
Risposta chiama(const Rotta& rotta, Servizi& servizi, Json corpo) {
  try {
    return rotta.gestore(servizi, corpo);
  } catch (...) {
    return guasto();
  }
}

}  // namespace

Router::Router(Servizi servizi) : servizi_(std::move(servizi)) {}

Risposta Router::handle(std::string_view rotta, Json corpo) noexcept {
  try {
    const Rotta* trovata = cercaRotta(rotta);
    if (trovata == nullptr) return errore("not found", 404);
    return esegui(*trovata, corpo.oggetto() ? corpo : Json());
  } catch (...) {
    return guasto();
  }
}

Risposta Router::esegui(const Rotta& rotta, Json corpo) {
  if (!rotta.mutating) return chiama(rotta, servizi_, corpo);
  servizi_.engine.invalidaDisco();
  Risposta risposta = chiama(rotta, servizi_, corpo);
  servizi_.engine.save();
  return risposta;
}

Coda Router::codaDi(std::string_view rotta) {
  const Rotta* trovata = cercaRotta(rotta);
  return trovata == nullptr ? Coda::ordinaria : trovata->coda;
}

}  // namespace pellak::api
