#include "PellakCore/MappaDisco.h"
#include "PellakCore/base/Formati.h"

namespace pellak {
namespace {

void scriviVoce(JsonWriter& uscita, const VoceMappa& voce, Livelli livelli) {
  uscita.beginObject();
  uscita.key("nome").text(voce.nome);
  uscita.key("dir").boolean(voce.dir);
  uscita.key("size").integer(voce.size);
  uscita.key("size_h").text(voce.size < 0 ? "…" : dimensione(voce.size));
  if (livelli == Livelli::due && voce.quanti > 0) {
    uscita.key("figli").beginArray();
    for (const FiglioMappa& figlio : voce.figli) {
      uscita.beginObject();
      uscita.key("nome").text(figlio.nome);
      uscita.key("dir").boolean(figlio.dir);
      uscita.key("size").integer(figlio.size);
      uscita.endObject();
    }
    uscita.endArray();
    uscita.key("quanti").integer(static_cast<std::int64_t>(voce.quanti));
  }
  uscita.endObject();
}

}  // namespace

void scriviMappa(JsonWriter& uscita, const Mappa& mappa, Livelli livelli) {
  const bool due = livelli == Livelli::due;
  uscita.beginObject();
  uscita.key("path").text(mappa.percorso);
  uscita.key("tot").integer(mappa.tot);
  uscita.key("tot_h").text(dimensione(mappa.tot));
  uscita.key("items").beginArray();
  for (const VoceMappa& voce : mappa.voci) scriviVoce(uscita, voce, livelli);
  uscita.endArray();
  if (mappa.nonLeggibili > 0) uscita.key("non_leggibili").integer(mappa.nonLeggibili);
  uscita.key("misurando").boolean(mappa.misurando() || (due && !mappa.conFigli));
  if (due) uscita.key("quanti").integer(static_cast<std::int64_t>(mappa.figli));
  uscita.endObject();
}

}  // namespace pellak
