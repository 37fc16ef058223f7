#include <algorithm>
#include <utility>

#include "PellakCore/MappaDiscoParti.h"

namespace pellak {
namespace {

/// Child folders whose own entries a map shows: no more could be told apart.
constexpr std::size_t kMaxSotto = 64;
/// Share of the whole below which a child folder is a speck.
constexpr std::int64_t kMinSotto = 400;

}  // namespace

/// The job that looks at the second level, where one is missing and none runs.
std::shared_ptr<MappaDisco::Lavoro> MappaDisco::secondoLivelloLocked(const MappaPtr& mappa) {
  if (mappa->conFigli || mappaRunning_.count(mappa->percorso) != 0) return nullptr;
  auto lavoro = std::make_shared<Lavoro>();
  lavoro->percorso = mappa->percorso;
  lavoro->finita = mappa;
  mappaRunning_.emplace(mappa->percorso, lavoro);
  return lavoro;
}

void MappaDisco::aggiungiFigliLocked(Mappa& mappa, const Sotto& sotto) const {
  for (VoceMappa& voce : mappa.voci) {
    const auto trovato = sotto.find(voce.nome);
    if (!voce.dir || trovato == sotto.end()) continue;
    voce.quanti = trovato->second->figli;
    voce.figli = figliLocked(unisci(mappa.percorso, voce.nome), *trovato->second);
  }
}

/// The largest entries of a folder. Folders that no measure noted are left out.
std::vector<FiglioMappa> MappaDisco::figliLocked(const std::string& cartella,
                                                 const Elenco& elenco) const {
  walker::FolderSizes::ByName note;
  for (const std::unique_ptr<Albero>& albero : alberi_) {
    if (albero->parlaDi(cartella)) note = albero->cartelle.in(cartella);
    if (!note.empty()) break;
  }
  std::vector<FiglioMappa> figli;
  for (const VoceMappa& voce : elenco.voci) {
    std::int64_t size = voce.size;
    if (voce.dir) {
      const auto nota = note.find(voce.nome);
      if (nota == note.end()) continue;
      size = nota->second;
    }
    if (size > 0) figli.push_back({voce.nome, voce.dir, size});
  }
  std::stable_sort(figli.begin(), figli.end(),
                   [](const auto& a, const auto& b) { return a.size > b.size; });
  if (figli.size() > kMaxFigli) figli.resize(kMaxFigli);
  return figli;
}

/// Adds the second level to a finished map, unless it was forgotten meanwhile.
void MappaDisco::scendi(const MappaPtr& mappa) {
  const Sotto sotto = elencaSotto(*mappa);
  Mappa nuova = *mappa;
  nuova.conFigli = true;
  const MutexLock hold(lock_);
  const auto nota = mappaCache_.find(mappa->percorso);
  if (nota == mappaCache_.end() || nota->second != mappa) return;
  aggiungiFigliLocked(nuova, sotto);
  nota->second = std::make_shared<const Mappa>(std::move(nuova));
}

/// What lies directly in the larger child folders. The measure has just been there, or a measure
/// of a folder above; what can't be listed was counted by it.
MappaDisco::Sotto MappaDisco::elencaSotto(const Mappa& mappa) const {
  Sotto sotto;
  for (const VoceMappa& voce : mappa.voci) {
    if (sotto.size() == kMaxSotto || voce.size < mappa.tot / kMinSotto || sfondo_.stopping()) break;
    if (!voce.dir) continue;
    if (auto elenco = elenca(lister_, unisci(mappa.percorso, voce.nome))) {
      sotto.emplace(voce.nome, std::move(*elenco));
    }
  }
  return sotto;
}

}  // namespace pellak
