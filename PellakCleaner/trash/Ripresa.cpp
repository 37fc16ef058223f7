// Finishing the books of a process that ended in the middle of an operation.

#include <set>
#include <utility>

#include "PellakCore/Finding.h"
#include "trash/Cestino.h"
#include "trash/Messaggi.h"

namespace pellak::trash {
namespace {

constexpr const char* kNota = "operazione ripresa dopo un'interruzione";

}  // namespace

void Cestino::riprendi() {
  if (!intenti_.presente()) return;
  // Whoever holds the lock is at work or finishes these books itself.
  if (const auto preso = ambiente_.files.tryLock(ambiente_.store.bloccoCestino())) {
    static_cast<void>(finisciLibri());
  }
}

/// Called with the lock held. An error means that nothing may be moved now.
Result<void> Cestino::finisciLibri() {
  const auto intento = intenti_.leggi();
  if (!intento) {
    // An intent that can't be understood is kept for whoever can, and must not be overwritten.
    return intento.error().kind == ErrorKind::invalid ? intenti_.accantona() : intento.error();
  }
  if (!*intento) return {};
  const auto batch = ambiente_.can.begin();
  for (const Intento::Passo& passo : (*intento)->passi) {
    // What can't be looked for must not pass for not moved.
    if (const auto certo = batch->searchable(passo.piano); !certo) {
      const std::string& causa = certo.error().causa;
      return Error{ErrorKind::denied, certo.error().code,
                   kNonElencato + (causa.empty() ? causa : " (" + causa + ")")};
    }
  }
  auto scritto = (*intento)->ripristino.empty() ? riprendiMosse(**intento, *batch)
                                                : riprendiRipristino(**intento, *batch);
  return scritto ? intenti_.togli() : scritto;
}

bool Cestino::stessoElemento(const std::string& percorso, const TrashPlan& piano) const {
  const auto voce = ambiente_.lister.attributes(percorso);
  return voce && voce->ino == piano.ino && voce->dev == static_cast<std::int32_t>(piano.dev);
}

/// Where the items of the intent lie in the Trash, empty for those that don't. A set of which only
/// some got there is put back first: it moves whole or not at all.
std::vector<std::string> Cestino::postiDi(const Intento& intento, TrashBatch& batch) const {
  std::vector<std::string> posti;
  posti.reserve(intento.passi.size());
  std::set<std::int64_t> rotti;
  for (const Intento::Passo& passo : intento.passi) {
    posti.push_back(batch.locate(passo.piano));
    if (posti.back().empty() && passo.insieme != 0) rotti.insert(passo.insieme);
  }
  for (std::size_t i = 0; i < posti.size() && !rotti.empty(); ++i) {
    const Intento::Passo& passo = intento.passi[i];
    const std::string& orig = passo.piano.percorso;
    if (posti[i].empty() || !rotti.contains(passo.insieme)) continue;
    if (custode_.destinazione(orig) && batch.putBack(posti[i], orig)) posti[i].clear();
  }
  return posti;
}

Result<void> Cestino::riprendiMosse(const Intento& intento, TrashBatch& batch) {
  if (auto letto = registro_.leggi(); !letto) return letto;
  // Everything but taking the intent away may have been done.
  if (registro_.cerca(intento.operazione.id)) return {};
  Operazione ripresa = intento.operazione;
  ripresa.nota = kNota;
  ripresa.tot = 0;
  batch.ofOperation(ripresa.id);
  std::vector<std::string> posti = postiDi(intento, batch);
  for (std::size_t i = 0; i < posti.size(); ++i) {
    const Intento::Passo& passo = intento.passi[i];
    if (posti[i].empty()) {
      batch.abandon(passo.piano);
    } else {
      ripresa.items.push_back(
          {passo.piano.percorso, std::move(posti[i]), false, false, passo.insieme});
      ripresa.tot = sommaSicura(ripresa.tot, passo.piano.size);
    }
  }
  if (auto sincrono = batch.sync(); !sincrono) return sincrono;
  return ripresa.items.empty() ? Result<void>() : registro_.logOperation(ripresa);
}

Result<void> Cestino::riprendiRipristino(const Intento& intento, TrashBatch& batch) {
  std::vector<std::size_t> fatti;
  std::set<std::int64_t> cominciati;
  std::vector<const Intento::Passo*> rimasti;
  for (const Intento::Passo& passo : intento.passi) {
    if (!batch.locate(passo.piano).empty()) {
      if (passo.insieme != 0) rimasti.push_back(&passo);
      continue;
    }
    batch.abandon(passo.piano);
    if (!stessoElemento(passo.destinazione, passo.piano)) continue;
    fatti.push_back(passo.indice);
    cominciati.insert(passo.insieme);
  }
  // A set that began to come back comes back whole.
  for (const Intento::Passo* passo : rimasti) {
    if (cominciati.contains(passo->insieme) && finisci(*passo, batch)) {
      fatti.push_back(passo->indice);
    }
  }
  if (fatti.empty()) return {};
  if (auto sincrono = batch.sync(); !sincrono) return sincrono;
  return registro_.logRestore(intento.ripristino, fatti, ambiente_.clock.now(), kNota);
}

/// Only ever to the folder the item came from.
bool Cestino::finisci(const Intento::Passo& passo, TrashBatch& batch) const {
  const std::string& orig = passo.piano.percorso;
  const std::size_t nome = orig.rfind('/') + 1;
  const bool accanto = passo.destinazione.rfind('/') + 1 == nome &&
                       passo.destinazione.compare(0, nome, orig, 0, nome) == 0;
  return accanto && custode_.destinazione(passo.destinazione) &&
         batch.putBack(passo.piano.nelCestino, passo.destinazione);
}

}  // namespace pellak::trash
