#include "trash/Cestino.h"

#include <unordered_set>
#include <utility>

#include "PellakCore/Finding.h"
#include "PellakCore/base/Motivo.h"
#include "trash/Messaggi.h"

namespace pellak::trash {
namespace {

constexpr const char* kOccupato = "un'altra operazione sul Cestino è in corso: riprova";
constexpr const char* kNonScritto =
    "gli elementi sono nel Cestino, ma il registro non è scrivibile: li annoto appena possibile";
constexpr const char* kNonSincronizzato =
    "gli elementi sono nel Cestino, ma il disco non ha confermato la scrittura";
constexpr const char* kPieno = "disco pieno: il registro non è scrivibile e non sposto nulla";
constexpr const char* kNonScrivibile = "registro non scrivibile: non sposto nulla";
/// A record holds what its intent holds and less, but for a remark.
constexpr std::size_t kMargine = 512;
constexpr const char* kNonValido = "percorso non valido";
constexpr int kConflict = 409;
constexpr int kServerError = 500;
/// How often another name in the Trash is looked for when somebody else is faster.
constexpr int kTentativi = 5;

}  // namespace

/// One batch on its way to the Trash.
struct Cestino::Lavoro {
  struct Voce {
    std::size_t lotto;
    bool daFare = true;
  };
  std::unique_ptr<TrashBatch> batch;
  Intento intento;
  std::vector<Voce> voci;  ///< one for each step of the intent
  Esito esito;
  std::int64_t liberati = 0;
};

Esito rifiuto(std::string testo, int stato) {
  Esito esito;
  esito.err = std::move(testo);
  esito.stato = stato;
  return esito;
}

Cestino::Cestino(AmbienteCestino ambiente)
    : ambiente_(std::move(ambiente)),
      custode_(ambiente_.store, ambiente_.can),
      registro_(ambiente_.files, ambiente_.reader, ambiente_.store),
      intenti_(ambiente_.files, ambiente_.store) {}

Result<std::unique_ptr<FileLock>> Cestino::blocco() {
  auto preso = ambiente_.files.lock(ambiente_.store.bloccoCestino());
  if (!preso) return preso.error();
  if (auto finiti = finisciLibri(); !finiti) return finiti.error();
  return preso;
}

Esito Cestino::rifiutoDi(const Error& errore) {
  if (errore.text == kNonElencato) return rifiuto(errore.text, kServerError);
  switch (errore.kind) {
    case ErrorKind::busy:
      return rifiuto(kOccupato, kConflict);
    case ErrorKind::full:
      return rifiuto(std::string(kPieno) + "; " + kComeFarePosto, kServerError);
    default:
      return rifiuto(std::string(kNonScrivibile) + " (" + motivoCompleto(errore) + ")",
                     kServerError);
  }
}

/// With the intent on the disk, and room in the log for the record that is going to come of it:
/// from here on whatever moves can be put back by its operation.
Result<void> Cestino::annota(const Intento& intento) {
  const auto scritto = intenti_.scrivi(intento);
  if (!scritto) return scritto.error();
  return registro_.pronto(*scritto + kMargine);
}

Esito Cestino::trashWithSound(const Titolo& titolo, std::span<const Lotto> lotti) {
  const auto preso = blocco();
  if (!preso) return rifiutoDi(preso.error());
  Lavoro lavoro;
  Operazione& operazione = lavoro.intento.operazione;
  operazione.id = nuovoId();
  lavoro.batch = ambiente_.can.begin();
  lavoro.batch->ofOperation(operazione.id);
  prepara(lavoro, lotti);
  if (lavoro.voci.empty()) return std::move(lavoro.esito);
  operazione.ts = ambiente_.clock.now();
  operazione.azione = titolo(lavoro.voci.size());
  if (const auto scritto = trashAll(lavoro, lotti); !scritto) return rifiutoDi(scritto.error());
  return concludi(lavoro, titolo);
}

void Cestino::prepara(Lavoro& lavoro, std::span<const Lotto> lotti) const {
  std::size_t quanti = 0;
  for (const Lotto& lotto : lotti) quanti += lotto.voci.size();
  std::unordered_set<std::string_view> visti;
  visti.reserve(quanti);
  lavoro.voci.reserve(quanti);
  lavoro.intento.passi.reserve(quanti);
  for (std::size_t i = 0; i < lotti.size(); ++i) {
    for (const Candidato& voce : lotti[i].voci) {
      if (!visti.insert(voce.percorso).second) continue;
      if (!custode_.ammesso(voce.percorso)) {
        lavoro.esito.failed.push_back({voce.percorso, kNonValido});
        continue;
      }
      auto piano = lavoro.batch->plan(voce.percorso);
      if (!piano) {
        lavoro.esito.failed.push_back({voce.percorso, trashMessage(voce.percorso, piano.error())});
        continue;
      }
      lavoro.intento.operazione.tot = sommaSicura(lavoro.intento.operazione.tot, voce.size);
      piano->size = voce.size;
      lavoro.intento.passi.push_back({std::move(*piano), {}, 0});
      lavoro.voci.push_back({i});
    }
  }
}

void Cestino::annuncia(Lavoro& lavoro) {
  std::vector<const TrashPlan*> piani;
  piani.reserve(lavoro.voci.size());
  for (std::size_t i = 0; i < lavoro.voci.size(); ++i) {
    if (lavoro.voci[i].daFare) piani.push_back(&lavoro.intento.passi[i].piano);
  }
  lavoro.batch->announce(piani);
}

/// A failure means that nothing was moved, and leaves no intent. Once something was, the intent of
/// before is on disk.
Result<void> Cestino::trashAll(Lavoro& lavoro, std::span<const Lotto> lotti) {
  std::vector<std::optional<bool>> ammessi(lotti.size());
  lavoro.esito.mosse.reserve(lavoro.voci.size());
  bool restano = true;
  Error perche = {ErrorKind::exists, 0, {}};
  for (int tentativo = 0; restano && tentativo < kTentativi; ++tentativo) {
    if (auto scritto = annota(lavoro.intento); !scritto) {
      if (lavoro.esito.mosse.empty()) {
        static_cast<void>(intenti_.togli());
        return scritto;
      }
      perche = scritto.error();
      break;
    }
    annuncia(lavoro);
    restano = false;
    for (std::size_t i = 0; i < lavoro.voci.size(); ++i) {
      if (!lavoro.voci[i].daFare) continue;
      const std::size_t lotto = lavoro.voci[i].lotto;
      if (!ammessi[lotto]) ammessi[lotto] = !lotti[lotto].ancora || lotti[lotto].ancora();
      if (*ammessi[lotto]) {
        muoviUno(lavoro, i);
        restano = restano || lavoro.voci[i].daFare;
      } else {
        lavoro.voci[i].daFare = false;
        lavoro.esito.failed.push_back({lavoro.intento.passi[i].piano.percorso, kCambiato});
      }
    }
  }
  for (std::size_t i = 0; restano && i < lavoro.voci.size(); ++i) {
    if (!lavoro.voci[i].daFare) continue;
    const std::string& percorso = lavoro.intento.passi[i].piano.percorso;
    lavoro.esito.failed.push_back({percorso, trashMessage(percorso, perche)});
  }
  return {};
}

void Cestino::muoviUno(Lavoro& lavoro, std::size_t posto) {
  TrashPlan& piano = lavoro.intento.passi[posto].piano;
  auto mosso = lavoro.batch->move(piano);
  if (!mosso && mosso.error().kind == ErrorKind::exists) {
    // Somebody else took the name in the Trash: another one, in the next round.
    auto altro = lavoro.batch->plan(piano.percorso);
    if (altro && altro->dev == piano.dev && altro->ino == piano.ino) {
      altro->size = piano.size;
      piano = std::move(*altro);
      return;
    }
  }
  lavoro.voci[posto].daFare = false;
  if (mosso) {
    lavoro.esito.mosse.push_back({piano.percorso, std::move(*mosso), false});
    lavoro.liberati = sommaSicura(lavoro.liberati, piano.size);
  } else {
    const bool altro = mosso.error().kind == ErrorKind::invalid;
    lavoro.esito.failed.push_back(
        {piano.percorso, altro ? kCambiato : trashMessage(piano.percorso, mosso.error())});
  }
}

Esito Cestino::concludi(Lavoro& lavoro, const Titolo& titolo) {
  Esito& esito = lavoro.esito;
  // Where nothing moved, too: records without items must go before the intent does.
  const bool sincrono = lavoro.batch->sync().ok();
  if (!esito.mosse.empty()) {
    if (!sincrono) esito.avviso = kNonSincronizzato;
    if (ambiente_.suono) ambiente_.suono();
    Operazione fatta = lavoro.intento.operazione;
    fatta.azione = titolo(esito.mosse.size());
    fatta.tot = lavoro.liberati;
    fatta.items = std::move(esito.mosse);
    esito.op = fatta.id;
    esito.tot = fatta.tot;
    // Without a record the intent stays: the next operation or start writes the record from it.
    const auto annotata = registro_.logOperation(fatta);
    esito.mosse = std::move(fatta.items);
    if (!annotata) {
      esito.avviso = kNonScritto;
      return std::move(esito);
    }
  }
  static_cast<void>(intenti_.togli());
  return std::move(esito);
}

void Cestino::log(const std::function<void(const Operazione&)>& visita) {
  riprendi();
  registro_.visita(visita);
}

}  // namespace pellak::trash
