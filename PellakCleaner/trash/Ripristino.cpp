// The way back out of the Trash.

#include <algorithm>
#include <map>
#include <span>
#include <unordered_set>
#include <utility>

#include "PellakCore/Contatore.h"
#include "PellakCore/base/BytePath.h"
#include "trash/Cestino.h"
#include "trash/Insiemi.h"
#include "trash/Messaggi.h"
#include "trash/Sguardi.h"

namespace pellak::trash {
namespace {

constexpr const char* kNonTracciato = "percorso nel Cestino non tracciato";
constexpr const char* kNonPiu = "non è più nel Cestino";
constexpr const char* kPermesso =
    "serve il permesso: concedi a PellakCleaner l'Accesso completo al disco (pannello Permessi)";
constexpr const char* kNonAmmessa =
    "il posto da cui veniva è riservato al sistema: non lo ripristino";
constexpr int kNotFound = 404;
constexpr int kServerError = 500;

bool giaTornato(const EntryAttributes& dentro, const EntryAttributes& fuori) {
  return dentro.type != EntryType::directory && fuori.type != EntryType::directory &&
         dentro.size == fuori.size && dentro.mtime == fuori.mtime;
}

/// The items that go back when one is asked for, or all are: none of a set comes back alone.
std::vector<std::size_t> daRimettere(const std::vector<Mossa>& items,
                                     std::optional<std::int64_t> indice) {
  std::vector<std::size_t> quali;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const bool chiesto = !indice || i == static_cast<std::size_t>(*indice);
    const bool conLui = !chiesto && !items[i].rip && items[i].insieme != 0 &&
                        items[i].insieme == items[static_cast<std::size_t>(*indice)].insieme;
    if (chiesto || conLui) quali.push_back(i);
  }
  return quali;
}

}  // namespace

/// An item that is to go back, and how things stand with it.
struct Cestino::Scelto {
  std::size_t indice;
  Sguardo sguardo;
};

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
  void fallito(std::size_t indice, const char* perche, std::string causa = {}) {
    const std::string& orig = operazione.items[indice].orig;
    esito.errors.push_back(std::string(ultimoComponente(orig)) + ": " + perche);
    esito.failed.push_back({orig, perche, std::move(causa)});
  }
  void tornato(std::size_t indice, std::string dove) {
    esito.mosse.push_back(operazione.items[indice]);
    esito.tornati.push_back(std::move(dove));
  }
  void riuscito(const Intento::Passo& passo) {
    fatti.push_back(passo.indice);
    tornato(passo.indice, passo.destinazione);
    if (passo.destinazione != passo.piano.percorso) {
      esito.rinominati.push_back(passo.destinazione);
    }
  }
  void prometti(Scelto scelto, std::string destinazione) {
    const Mossa& mossa = operazione.items[scelto.indice];
    const EntryAttributes& voce = *scelto.sguardo.dentro;
    promesse.insert(destinazione);
    TrashPlan piano = {std::move(scelto.sguardo.orig), mossa.trash,
                       static_cast<std::uint64_t>(voce.dev), voce.ino, 0};
    intento.passi.push_back(
        {std::move(piano), std::move(destinazione), scelto.indice, mossa.insieme});
  }
};

Esito Cestino::restore(std::string_view id, std::optional<std::int64_t> indice) {
  // In a log that can't be read any operation would pass for unknown.
  if (const auto letto = registro_.leggi(); !letto) {
    return rifiuto(registroNonLeggibile(letto.error()), kServerError);
  }
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
  guardaTutti(ritorno, daRimettere(ritorno.operazione.items, indice));
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

/// Decides what becomes of each item.
void Cestino::guardaTutti(Ritorno& ritorno, const std::vector<std::size_t>& quali) const {
  const std::vector<Mossa>& items = ritorno.operazione.items;
  std::vector<Mossa> poche;
  if (quali.size() < items.size()) {
    for (const std::size_t i : quali) poche.push_back(items[i]);
  }
  auto sguardi = guarda(ambiente_.can, ambiente_.lister, ambiente_.store.home(),
                        poche.empty() ? std::span(items) : std::span<const Mossa>(poche));
  ritorno.aspetta(quali.size());
  std::map<std::int64_t, std::vector<Scelto>> insiemi;
  for (std::size_t i = 0; i < quali.size(); ++i) {
    Scelto scelto = {quali[i], std::move(sguardi[i])};
    const std::int64_t insieme = items[quali[i]].insieme;
    if (!rimettibile(ritorno, scelto)) scelto.sguardo.suo = false;
    if (insieme != 0) {
      insiemi[insieme].push_back(std::move(scelto));
    } else if (scelto.sguardo.suo) {
      scegli(ritorno, std::move(scelto));
    }
  }
  for (auto& [insieme, scelti] : insiemi) scegliInsieme(ritorno, std::move(scelti));
}

/// Whether an item can go back at all; the reason why not becomes part of the answer.
bool Cestino::rimettibile(Ritorno& ritorno, const Scelto& scelto) const {
  const char* perche = nullptr;
  if (ritorno.operazione.items[scelto.indice].trash.empty()) {
    perche = kNonTracciato;
  } else if (!scelto.sguardo.suo || !scelto.sguardo.dentro) {
    perche = kNonPiu;
  } else if (!custode_.destinazione(scelto.sguardo.orig)) {
    perche = kNonAmmessa;
  }
  if (perche != nullptr) ritorno.fallito(scelto.indice, perche, scelto.sguardo.causa);
  return perche == nullptr;
}

/// Already back, or a step of the intent.
void Cestino::scegli(Ritorno& ritorno, Scelto scelto) const {
  Sguardo& sguardo = scelto.sguardo;
  // Nothing moves, so the item stays in the Trash and can still be put back.
  if (sguardo.fuori && giaTornato(*sguardo.dentro, *sguardo.fuori)) {
    return ritorno.tornato(scelto.indice, std::move(sguardo.orig));
  }
  std::string dove = destinazione(sguardo.orig, std::move(sguardo.fuori), ritorno.promesse);
  ritorno.prometti(std::move(scelto), std::move(dove));
}

/// All of a set that is still there goes back under one number, the smallest that finds every place
/// free: those of companions that are gone, too, for what lies there now belongs to another set.
void Cestino::scegliInsieme(Ritorno& ritorno, std::vector<Scelto> scelti) const {
  const auto libero = [&](const std::string& posto) {
    const auto voce = ambiente_.lister.attributes(posto);
    if (!voce && voce.error().kind == ErrorKind::denied) registraDiniego(posto);
    return !voce && !ritorno.promesse.contains(posto);
  };
  std::unordered_set<std::string> suoi;
  for (const Scelto& scelto : scelti) suoi.insert(scelto.sguardo.orig);
  const auto tuttiLiberi = [&](const Scelto& scelto, std::size_t numero) {
    const auto& [orig, suo, causa, dentro, fuori] = scelto.sguardo;
    const bool tornato = numero == 0 && suo && fuori && giaTornato(*dentro, *fuori);
    const std::string posto = numero == 0 ? orig : conNumeroComune(orig, numero);
    if (!tornato && !libero(posto)) return false;
    const std::vector<std::string> compagni = compagniDi(posto);
    return std::all_of(compagni.begin(), compagni.end(), [&](const std::string& compagno) {
      return (numero == 0 && suoi.contains(compagno)) || libero(compagno);
    });
  };
  std::size_t numero = 0;
  while (!std::all_of(scelti.begin(), scelti.end(),
                      [&](const Scelto& scelto) { return tuttiLiberi(scelto, numero); })) {
    ++numero;
  }
  for (Scelto& scelto : scelti) {
    if (!scelto.sguardo.suo) continue;
    std::string posto = scelto.sguardo.orig;
    if (numero > 0) posto = conNumeroComune(posto, numero);
    if (numero == 0 && scelto.sguardo.fuori) {
      ritorno.tornato(scelto.indice, std::move(posto));
    } else {
      ritorno.prometti(std::move(scelto), std::move(posto));
    }
  }
}

void Cestino::restore(Ritorno& ritorno) {
  const std::vector<Intento::Passo>& passi = ritorno.intento.passi;
  for (std::size_t primo = 0; primo < passi.size();) {
    std::size_t fine = primo + 1;
    while (passi[primo].insieme != 0 && fine < passi.size() &&
           passi[fine].insieme == passi[primo].insieme) {
      ++fine;
    }
    rimetti(ritorno, std::span(passi).subspan(primo, fine - primo));
    primo = fine;
  }
}

/// One item, or a set: what of it is back goes into the Trash again when one of them can't come.
void Cestino::rimetti(Ritorno& ritorno, std::span<const Intento::Passo> passi) {
  std::string causa;
  const auto bloccato = std::find_if_not(passi.begin(), passi.end(), [&](const auto& passo) {
    const auto tornato = ritorno.batch->putBack(passo.piano.nelCestino, passo.destinazione);
    if (!tornato) causa = tornato.error().causa;
    return tornato.ok();
  });
  for (auto passo = passi.begin(); passo != passi.end(); ++passo) {
    const bool resta = bloccato != passi.end() &&
                       (passo >= bloccato ||
                        ritorno.batch->undoPutBack(passo->piano.nelCestino, passo->destinazione));
    if (resta) {
      ritorno.fallito(passo->indice, kPermesso, causa);
    } else {
      ritorno.riuscito(*passo);
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
