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
constexpr const char* kNonTornato =
    "una parte di un insieme è rimasta nel Cestino: ripristinala dal registro";
constexpr const char* kNonValido = "percorso non valido";
constexpr int kConflict = 409;
constexpr int kServerError = 500;
/// How often another name in the Trash is looked for when somebody else is faster.
constexpr int kTentativi = 5;

/// A folder is the same whatever was written in it; a file that only got other rights or another
/// name is.
bool comeVisto(const Candidato& voce, const TrashPlan& piano) {
  const Identita& visto = voce.identita;
  if (!visto.nota() || piano.type == EntryType::unknown) return true;
  if (visto.type != piano.type || visto.type == EntryType::directory) {
    return visto.type == piano.type;
  }
  return visto.inode == piano.ino && visto.mtimeNs == piano.mtimeNs &&
         voce.lunghezza == piano.lunghezza;
}

}  // namespace

/// One batch on its way to the Trash.
struct Cestino::Lavoro {
  struct Voce {
    std::size_t lotto;
    bool daFare = true;
    std::string dove;  ///< its place in the Trash once it has moved
  };
  std::unique_ptr<TrashBatch> batch;
  Intento intento;
  std::vector<Voce> voci;  ///< one for each step of the intent
  Esito esito;
  std::size_t mossi = 0;

  void fallito(std::size_t posto, std::string err, std::string causa = {}) {
    voci[posto].daFare = false;
    esito.failed.push_back({intento.passi[posto].piano.percorso, std::move(err), std::move(causa)});
  }
};

Esito rifiuto(std::string testo, int stato) {
  Esito esito;
  esito.err = std::move(testo);
  esito.stato = stato;
  return esito;
}

Cestino::Cestino(AmbienteCestino ambiente)
    : ambiente_(std::move(ambiente)),
      custode_(ambiente_.store, ambiente_.can, ambiente_.cartelleUtente),
      registro_(ambiente_.files, ambiente_.reader, ambiente_.store),
      intenti_(ambiente_.files, ambiente_.store) {}

Result<std::unique_ptr<FileLock>> Cestino::blocco() {
  auto preso = ambiente_.files.lock(ambiente_.store.bloccoCestino());
  if (!preso) return preso.error();
  if (auto finiti = finisciLibri(); !finiti) return finiti.error();
  return preso;
}

Esito Cestino::rifiutoDi(const Error& errore) {
  if (errore.text.starts_with(kNonElencato)) return rifiuto(errore.text, kServerError);
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
    const std::size_t primo = lavoro.voci.size();
    const std::size_t falliti = lavoro.esito.failed.size();
    for (const Candidato& voce : lotti[i].voci) {
      if (visti.insert(voce.percorso).second) preparaUno(lavoro, voce, i);
    }
    if (!lotti[i].insieme) continue;
    if (lavoro.esito.failed.size() > falliti) lasciaStare(lavoro, primo);
    for (std::size_t posto = primo; posto < lavoro.voci.size(); ++posto) {
      lavoro.intento.passi[posto].insieme = static_cast<std::int64_t>(i) + 1;
    }
  }
}

void Cestino::preparaUno(Lavoro& lavoro, const Candidato& voce, std::size_t lotto) const {
  if (!custode_.ammesso(voce.percorso)) {
    lavoro.esito.failed.push_back(
        {voce.percorso, kNonValido, custode_.causaDelRifiuto(voce.percorso)});
    return;
  }
  auto piano = lavoro.batch->plan(voce.percorso);
  if (!piano) {
    lavoro.esito.failed.push_back(
        {voce.percorso, trashMessage(voce.percorso, piano.error()), piano.error().causa});
    return;
  }
  if (!comeVisto(voce, *piano)) {
    lavoro.esito.failed.push_back({voce.percorso, kCambiato});
    return;
  }
  lavoro.intento.operazione.tot = sommaSicura(lavoro.intento.operazione.tot, voce.size);
  piano->size = voce.size;
  lavoro.intento.passi.push_back({std::move(*piano), {}, 0, 0});
  lavoro.voci.push_back({lotto, true, {}});
}

/// Nothing of a set is begun when one of it can't go; the steps from `primo` on are its own.
void Cestino::lasciaStare(Lavoro& lavoro, std::size_t primo) {
  for (std::size_t posto = primo; posto < lavoro.voci.size(); ++posto) {
    lavoro.intento.operazione.tot -= lavoro.intento.passi[posto].piano.size;
    lavoro.fallito(posto, kInsieme);
  }
  lavoro.voci.resize(primo, {0, false, {}});
  lavoro.intento.passi.resize(primo);
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
  bool restano = true;
  Error perche = {ErrorKind::exists, 0, {}};
  for (int tentativo = 0; restano && tentativo < kTentativi; ++tentativo) {
    if (auto scritto = annota(lavoro.intento); !scritto) {
      if (lavoro.mossi == 0) {
        // Records of what was put back go before the intent does.
        static_cast<void>(lavoro.batch->sync());
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
      if (!*ammessi[lotto]) {
        lavoro.fallito(i, kCambiato);
        continue;
      }
      muoviUno(lavoro, i);
      restano = restano || lavoro.voci[i].daFare;
      const bool fallita = !lavoro.voci[i].daFare && lavoro.voci[i].dove.empty();
      if (fallita && lotti[lotto].insieme) ritira(lavoro, lotto);
    }
  }
  for (std::size_t i = 0; restano && i < lavoro.voci.size(); ++i) {
    if (!lavoro.voci[i].daFare) continue;
    const std::string& percorso = lavoro.intento.passi[i].piano.percorso;
    lavoro.fallito(i, trashMessage(percorso, perche));
    if (lotti[lavoro.voci[i].lotto].insieme) ritira(lavoro, lavoro.voci[i].lotto);
  }
  return {};
}

/// One of a set could not move: what moved of it goes back, and the rest stays.
void Cestino::ritira(Lavoro& lavoro, std::size_t lotto) {
  for (std::size_t i = 0; i < lavoro.voci.size(); ++i) {
    Lavoro::Voce& voce = lavoro.voci[i];
    if (voce.lotto != lotto) continue;
    if (voce.daFare) lavoro.fallito(i, kInsieme);
    if (voce.dove.empty()) continue;
    if (lavoro.batch->putBack(voce.dove, lavoro.intento.passi[i].piano.percorso)) {
      voce.dove.clear();
      --lavoro.mossi;
      lavoro.fallito(i, kInsieme);
    } else {
      // Its place was taken meanwhile: it is in the Trash, and in the record.
      lavoro.esito.avviso = kNonTornato;
    }
  }
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
  if (mosso) {
    lavoro.voci[posto].daFare = false;
    lavoro.voci[posto].dove = std::move(*mosso);
    ++lavoro.mossi;
  } else {
    const Error& errore = mosso.error();
    const bool altro = errore.kind == ErrorKind::invalid;
    lavoro.fallito(posto, altro ? kCambiato : trashMessage(piano.percorso, errore), errore.causa);
  }
}

Esito Cestino::concludi(Lavoro& lavoro, const Titolo& titolo) {
  Esito& esito = lavoro.esito;
  // Where nothing moved, too: records without items must go before the intent does.
  const bool sincrono = lavoro.batch->sync().ok();
  if (lavoro.mossi > 0) {
    if (!sincrono) esito.avviso = kNonSincronizzato;
    if (ambiente_.suono) ambiente_.suono();
    Operazione fatta = lavoro.intento.operazione;
    fatta.azione = titolo(lavoro.mossi);
    fatta.tot = 0;
    fatta.items.reserve(lavoro.mossi);
    for (std::size_t i = 0; i < lavoro.voci.size(); ++i) {
      if (lavoro.voci[i].dove.empty()) continue;
      Intento::Passo& passo = lavoro.intento.passi[i];
      fatta.tot = sommaSicura(fatta.tot, passo.piano.size);
      fatta.items.push_back({std::move(passo.piano.percorso), std::move(lavoro.voci[i].dove), false,
                             false, passo.insieme});
    }
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

Result<void> Cestino::log(const std::function<void(const Operazione&)>& visita) {
  riprendi();
  return registro_.visita(visita);
}

}  // namespace pellak::trash
