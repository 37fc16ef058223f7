#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/JsonWriter.h"
#include "api/Gestori.h"

namespace pellak::api::gestori {

/// Whatever keeps a folder from being listed is one answer, a missing folder too.
Risposta mappa(Servizi& servizi, Json corpo) {
  const std::string percorso = standardizza(corpo.testo("path", "~"), servizi.home);
  if (percorso.empty()) return errore("percorso non valido", 400);
  const Livelli livelli = corpo.intero("livelli", 1) == 2 ? Livelli::due : Livelli::uno;
  const auto trovata =
      servizi.engine.mappa().richiedi(percorso, corpo.booleano("force", false), livelli);
  if (!trovata) return errore("cartella non leggibile (permessi)", 403);
  JsonWriter uscita;
  scriviMappa(uscita, **trovata, livelli);
  return conTesto(uscita.take());
}

}  // namespace pellak::api::gestori
