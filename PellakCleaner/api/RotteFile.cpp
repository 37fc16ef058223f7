#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <vector>

#include "PellakCore/base/BytePath.h"
#include "api/Gestori.h"

namespace pellak::api::gestori {
namespace {

/// The path of the request as it lies on the disk; empty when it can't be used.
std::string percorsoEsistente(Servizi& servizi, Json corpo) {
  std::string percorso = standardizza(corpo.testo("path"), servizi.home);
  if (!percorso.empty() && !servizi.files.exists(percorso)) percorso.clear();
  return percorso;
}

Risposta percorsoNonValido() { return errore("percorso non valido", 400); }

Risposta mostraTutti(Servizi& servizi, std::span<const std::string> percorsi) {
  if (servizi.fileManager.show(percorsi)) return riuscito();
  return errore("gestore dei file non disponibile", 500);
}

}  // namespace

Risposta apri(Servizi& servizi, Json corpo) {
  const std::string percorso = percorsoEsistente(servizi, corpo);
  if (percorso.empty()) return percorsoNonValido();
  if (servizi.fileManager.open(percorso)) return riuscito();
  return errore("apertura non riuscita", 500);
}

Risposta mostra(Servizi& servizi, Json corpo) {
  if (corpo.booleano("cestino", false)) {
    if (servizi.fileManager.openTrash()) return riuscito();
    return errore("gestore dei file non disponibile", 500);
  }
  const std::string percorso = percorsoEsistente(servizi, corpo);
  if (percorso.empty()) return percorsoNonValido();
  return mostraTutti(servizi, std::array<std::string, 1>{percorso});
}

/// Paths that went away since the scan are left out.
Risposta reveal(Servizi& servizi, Json corpo) {
  auto percorsi =
      servizi.engine.percorsiGruppo(corpo.testo("id", "duplicates"), corpo.intero("group", -1));
  if (!percorsi) return errore("gruppo inesistente");
  const auto sparito = [&](const std::string& percorso) { return !servizi.files.exists(percorso); };
  percorsi->erase(std::remove_if(percorsi->begin(), percorsi->end(), sparito), percorsi->end());
  if (percorsi->empty()) return percorsoNonValido();
  return mostraTutti(servizi, *percorsi);
}

}  // namespace pellak::api::gestori
