// The engine's snapshots: what the page and a terminal are told.
#include <algorithm>
#include <utility>

#include "PellakCore/Catalogo.h"
#include "PellakCore/Engine.h"

namespace pellak {

std::shared_ptr<const Snapshot> Engine::snapshot() {
  const MutexLock hold(lock_);
  if (cachedState_ == nullptr) cachedState_ = costruisciLocked();
  return cachedState_;
}

bool Engine::scandibile(const Meta& meta) const {
  const auto& speciali = ambiente_.scanner.speciali;
  const bool conRegole = ambiente_.scanner.regole && !meta.cats.empty();
  return conRegole || std::any_of(meta.specials.begin(), meta.specials.end(),
                                  [&](std::string_view id) { return speciali.contains(id); });
}

bool Engine::disponibile(const Meta& meta) const {
  const auto& speciali = ambiente_.scanner.speciali;
  return std::all_of(meta.specials.begin(), meta.specials.end(),
                     [&](std::string_view id) { return speciali.contains(id); });
}

RiassuntoSezione Engine::riassuntoLocked(const Meta& meta) {
  const Sec& sezione = state_.find(meta.id)->second;
  RiassuntoSezione riassunto;
  riassunto.id = meta.id;
  riassunto.name = meta.name;
  riassunto.status = sezione.statoMostrato();
  riassunto.scanning = sezione.scanning;
  riassunto.queued = std::find(queue_.begin(), queue_.end(), meta.id) != queue_.end();
  const SommeSezione& somme = libera_.sezione(meta.id, sezione);
  riassunto.totale = somme.totale;
  riassunto.libera = somme.libera;
  riassunto.segnalati = somme.segnalati;
  riassunto.lastScan = sezione.lastScan;
  riassunto.scandibile = scandibile(meta);
  riassunto.disponibile = disponibile(meta);
  for (const Finding& finding : sezione.findings) riassunto.voci += finding.quante();
  return riassunto;
}

std::shared_ptr<const Snapshot> Engine::costruisciLocked() {
  auto nuovo = std::make_shared<Snapshot>();
  nuovo->ver = stateVer_;
  nuovo->busy = occupatoLocked();
  nuovo->testo.add("{\"sections\":[");
  const IconaNota icona = [this](std::string_view chiave) { return icone_.nota(chiave); };
  std::vector<const Sec*> sezioni;
  for (const Meta& meta : metas()) {
    const Sec& sezione = state_.find(meta.id)->second;
    sezioni.push_back(&sezione);
    RiassuntoSezione riassunto = riassuntoLocked(meta);
    statoTesto_.scriviSezione(
        nuovo->testo, meta, sezione,
        {riassunto.queued, riassunto.disponibile, riassunto.libera, riassunto.scandibile},
        nuovo->sezioni.empty(), icona);
    nuovo->sezioni.push_back(std::move(riassunto));
  }
  nuovo->libera = libera_.tutte(sezioni);
  nuovo->testo.add(std::string("],\"busy\":") + (nuovo->busy ? "true" : "false") +
                   ",\"ver\":" + std::to_string(nuovo->ver) +
                   ",\"libera\":" + std::to_string(nuovo->libera) + "}");
  return nuovo;
}

}  // namespace pellak
