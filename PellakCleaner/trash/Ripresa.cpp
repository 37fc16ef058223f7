// Finishing the books of a process that ended in the middle of an operation.

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
      return Error{ErrorKind::denied, certo.error().code, kNonElencato};
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

Result<void> Cestino::riprendiMosse(const Intento& intento, TrashBatch& batch) {
  if (auto letto = registro_.leggi(); !letto) return letto;
  // Everything but taking the intent away may have been done.
  if (registro_.cerca(intento.operazione.id)) return {};
  Operazione ripresa = intento.operazione;
  ripresa.nota = kNota;
  ripresa.tot = 0;
  batch.ofOperation(ripresa.id);
  for (const Intento::Passo& passo : intento.passi) {
    const std::string dove = batch.locate(passo.piano);
    if (dove.empty()) {
      batch.abandon(passo.piano);
    } else {
      ripresa.items.push_back({passo.piano.percorso, dove, false});
      ripresa.tot = sommaSicura(ripresa.tot, passo.piano.size);
    }
  }
  if (ripresa.items.empty()) return {};
  if (auto sincrono = batch.sync(); !sincrono) return sincrono;
  return registro_.logOperation(ripresa);
}

Result<void> Cestino::riprendiRipristino(const Intento& intento, TrashBatch& batch) {
  std::vector<std::size_t> fatti;
  for (const Intento::Passo& passo : intento.passi) {
    if (!batch.locate(passo.piano).empty()) continue;
    batch.abandon(passo.piano);
    if (stessoElemento(passo.destinazione, passo.piano)) fatti.push_back(passo.indice);
  }
  if (fatti.empty()) return {};
  return registro_.logRestore(intento.ripristino, fatti, ambiente_.clock.now(), kNota);
}

}  // namespace pellak::trash
