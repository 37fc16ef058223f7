// The way back out of the Trash.

#include <span>
#include <unordered_set>
#include <utility>

#include "PellakCore/Contatore.h"
#include "PellakCore/base/BytePath.h"
#include "trash/Cestino.h"
#include "trash/Sguardi.h"

namespace pellak::trash {
namespace {

constexpr const char* kNonTracciato = "percorso nel Cestino non tracciato";
constexpr const char* kNonPiu = "non è più nel Cestino";
constexpr const char* kPermesso =
    "serve il permesso: concedi a PellakCleaner l'Accesso completo al disco (pannello Permessi)";
constexpr int kNotFound = 404;

/// report.pdf and 1: "report (ripristinato 1).pdf"
std::string conNumero(const std::string& percorso, std::size_t numero) {
  const std::size_t nome = percorso.rfind('/') + 1;
  const std::size_t punto = percorso.rfind('.');
  const bool estensione = punto != std::string::npos && punto > nome && punto + 1 < percorso.size();
  const std::string aggiunta = " (ripristinato " + std::to_string(numero) + ")";
  if (!estensione) return percorso + aggiunta;
  return percorso.substr(0, punto) + aggiunta + percorso.substr(punto);
}

std::string sopra(const std::string& percorso) {
  const std::size_t barra = percorso.rfind('/');
  return barra == 0 || barra == std::string::npos ? "/" : percorso.substr(0, barra);
}

bool giaTornato(const EntryAttributes& dentro, const EntryAttributes& fuori) {
  return dentro.type != EntryType::directory && fuori.type != EntryType::directory &&
         dentro.size == fuori.size && dentro.mtime == fuori.mtime;
}

}  // namespace

/// One operation on its way back.
struct Cestino::Ritorno {
  std::unique_ptr<TrashBatch> batch;
  Operazione operazione;
  Intento intento;
  std::unordered_set<std::string> promesse;  ///< destinations of the intent's steps
  std::vector<std::size_t> fatti;            ///< items that left the Trash
  Esito esito;

  void aspetta(std::size_t quanti) {
    intento.passi.reserve(quanti);
    promesse.reserve(quanti);
    fatti.reserve(quanti);
    esito.mosse.reserve(quanti);
    esito.tornati.reserve(quanti);
  }
  void fallito(std::size_t indice, const char* perche) {
    const std::string& orig = operazione.items[indice].orig;
    esito.errors.push_back(std::string(ultimoComponente(orig)) + ": " + perche);
  }
  void tornato(std::size_t indice, std::string dove) {
    esito.mosse.push_back(operazione.items[indice]);
    esito.tornati.push_back(std::move(dove));
  }
};

Esito Cestino::restore(std::string_view id, std::optional<std::int64_t> indice) {
  const auto preso = blocco();
  if (!preso) return rifiutoDi(preso.error());
  auto operazione = registro_.cerca(id);
  if (!operazione) return rifiuto("operazione non trovata", kNotFound);
  const auto quanti = static_cast<std::int64_t>(operazione->items.size());
  if (indice && (*indice < 0 || *indice >= quanti)) return rifiuto("indice non valido");
  Ritorno ritorno;
  ritorno.batch = ambiente_.can.begin();
  ritorno.operazione = std::move(*operazione);
  ritorno.intento.ripristino = ritorno.operazione.id;
  const auto primo = static_cast<std::size_t>(indice.value_or(0));
  const std::span mosse = std::span(ritorno.operazione.items)
                              .subspan(primo, indice ? 1 : ritorno.operazione.items.size());
  auto sguardi = guarda(ambiente_.can, ambiente_.lister, ambiente_.store.home(), mosse);
  ritorno.aspetta(mosse.size());
  for (std::size_t i = 0; i < sguardi.size(); ++i) {
    scegli(ritorno, primo + i, std::move(sguardi[i]));
  }
  if (!ritorno.intento.passi.empty()) {
    if (const auto scritto = annota(ritorno.intento); !scritto) {
      static_cast<void>(intenti_.togli());
      return rifiutoDi(scritto.error());
    }
  }
  restore(ritorno);
  if (!ritorno.fatti.empty() && !ritorno.batch->sync()) {
    ritorno.esito.avviso = "il disco non ha confermato la scrittura";
  }
  if (ritorno.fatti.empty() ||
      registro_.logRestore(ritorno.operazione.id, ritorno.fatti, ambiente_.clock.now())) {
    static_cast<void>(intenti_.togli());
  } else {
    ritorno.esito.avviso = "il registro non è scrivibile: annoto il ripristino appena possibile";
  }
  return std::move(ritorno.esito);
}

/// Decides what becomes of one item: a reason why not, already back, or a step of the intent.
void Cestino::scegli(Ritorno& ritorno, std::size_t indice, Sguardo sguardo) const {
  const Mossa& mossa = ritorno.operazione.items[indice];
  if (mossa.trash.empty()) return ritorno.fallito(indice, kNonTracciato);
  const auto& dentro = sguardo.dentro;
  if (!sguardo.suo || !dentro) return ritorno.fallito(indice, kNonPiu);
  // Nothing moves, so the item stays in the Trash and can still be put back.
  if (sguardo.fuori && giaTornato(*dentro, *sguardo.fuori)) {
    return ritorno.tornato(indice, std::move(sguardo.orig));
  }
  std::string dove = destinazione(sguardo.orig, std::move(sguardo.fuori), ritorno.promesse);
  ritorno.promesse.insert(dove);
  TrashPlan piano = {std::move(sguardo.orig), mossa.trash, static_cast<std::uint64_t>(dentro->dev),
                     dentro->ino, 0};
  ritorno.intento.passi.push_back({std::move(piano), std::move(dove), indice});
}

void Cestino::restore(Ritorno& ritorno) const {
  for (const Intento::Passo& passo : ritorno.intento.passi) {
    const auto prova = [&] {
      return ritorno.batch->putBack(passo.piano.nelCestino, passo.destinazione);
    };
    auto tornato = prova();
    if (!tornato && tornato.error().kind == ErrorKind::missing &&
        ambiente_.files.makeFolder(sopra(passo.destinazione))) {
      tornato = prova();
    }
    if (tornato) {
      ritorno.fatti.push_back(passo.indice);
      ritorno.tornato(passo.indice, passo.destinazione);
      if (passo.destinazione != passo.piano.percorso) {
        ritorno.esito.rinominati.push_back(passo.destinazione);
      }
    } else {
      ritorno.fallito(passo.indice, kPermesso);
    }
  }
}

/// A free name, `voce` being what the system says of `orig`.
std::string Cestino::destinazione(const std::string& orig, Result<EntryAttributes> voce,
                                  const std::unordered_set<std::string>& promesse) const {
  std::string scelta = orig;
  for (std::size_t numero = 1; voce || promesse.contains(scelta); ++numero) {
    scelta = conNumero(orig, numero);
    voce = ambiente_.lister.attributes(scelta);
  }
  if (voce.error().kind == ErrorKind::denied) registraDiniego(scelta);
  return scelta;
}

}  // namespace pellak::trash
