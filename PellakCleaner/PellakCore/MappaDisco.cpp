#include "PellakCore/MappaDisco.h"

#include <algorithm>
#include <mutex>
#include <unordered_set>
#include <utility>

#include "PellakCore/Finding.h"
#include "PellakCore/MappaDiscoParti.h"
#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/Guarded.h"
#include "scanners/walker/FolderSizes.h"
#include "scanners/walker/Walker.h"

namespace pellak {
namespace {

/// Finished maps kept; of 2000 entries each they take some 40 MB.
constexpr std::size_t kMaxMappe = 250;
/// Folders whose sizes are kept for the levels below, over all measures: some 16 MB.
constexpr std::size_t kMaxCartelle = 400'000;
constexpr std::size_t kMaxAlberi = 64;
/// Refused paths one job remembers and counts.
constexpr std::size_t kMaxNegati = 100'000;

constexpr std::int64_t kIgnota = -1;

/// The positions of the largest files, no more than a map can show, in listing order. Equal ones:
/// the first listed.
std::vector<std::size_t> filePiuGrandi(const std::vector<BulkEntry>& trovati) {
  std::vector<std::size_t> posti;
  for (std::size_t i = 0; i < trovati.size(); ++i) {
    if (!trovati[i].isDir) posti.push_back(i);
  }
  if (posti.size() > MappaDisco::kMaxVoci) {
    const auto fine = posti.begin() + static_cast<std::ptrdiff_t>(MappaDisco::kMaxVoci);
    std::nth_element(posti.begin(), fine, posti.end(), [&](std::size_t a, std::size_t b) {
      if (trovati[a].alloc != trovati[b].alloc) return trovati[a].alloc > trovati[b].alloc;
      return a < b;
    });
    posti.erase(fine, posti.end());
    std::sort(posti.begin(), posti.end());
  }
  return posti;
}

}  // namespace

MappaDisco::MappaDisco(DirectoryLister& lister, BackgroundPool& sfondo)
    : lister_(lister), sfondo_(sfondo) {}

MappaDisco::~MappaDisco() = default;

Result<MappaDisco::MappaPtr> MappaDisco::richiedi(const std::string& richiesto, bool forza,
                                                  Livelli livelli) {
  if (!forza) {
    const MutexLock hold(lock_);
    MappaPtr nota = notaLocked(richiesto);
    if (nota && (nota->conFigli || livelli == Livelli::uno)) return nota;
  }
  const Result<std::string> reale = lister_.resolve(richiesto);
  if (!reale) return reale.error();
  const std::string& percorso = *reale;
  if (forza) {
    const MutexLock hold(lock_);
    dimenticaLocked(percorso);
  }
  for (;;) {
    std::shared_ptr<const Elenco> elenco;
    std::shared_ptr<Lavoro> nuovo;
    MappaPtr nota;
    std::uint64_t generazione = 0;
    {
      const MutexLock hold(lock_);
      nota = notaLocked(percorso);
      if (nota && livelli == Livelli::due) nuovo = secondoLivelloLocked(nota);
      const auto lavoro = mappaRunning_.find(percorso);
      if (lavoro != mappaRunning_.end() && !lavoro->second->superato) {
        elenco = lavoro->second->elenco;
      }
      generazione = generazione_;
    }
    if (nuovo) avvia(nuovo);
    if (nota) return nota;
    if (!elenco) {
      auto letto = elenca(lister_, percorso);
      if (!letto) return letto.error();
      elenco = std::move(*letto);
    }
    if (auto risposta = rispondi(percorso, std::move(elenco), generazione, livelli)) {
      return *risposta;
    }
  }
}

Result<std::shared_ptr<const MappaDisco::Elenco>> MappaDisco::elenca(DirectoryLister& lister,
                                                                     const std::string& percorso) {
  Guarded<std::unordered_set<std::string>> negati;
  const walker::Ambiente ambiente{lister, [&](std::string_view negato) {
                                    negati.with([&](auto& noti) { noti.emplace(negato); });
                                  }};
  auto trovati = walker::listFolder(ambiente, percorso);
  if (!trovati) return trovati.error();
  auto elenco = std::make_shared<Elenco>();
  elenco->figli = trovati->size();
  elenco->negati = negati.with([](auto& noti) { return std::move(noti); });
  const std::vector<std::size_t> grandi = filePiuGrandi(*trovati);
  auto prossimo = grandi.begin();
  for (std::size_t i = 0; i < trovati->size(); ++i) {
    BulkEntry& voce = (*trovati)[i];
    if (voce.isDir) {
      elenco->voci.push_back({std::move(voce.name), true, kIgnota, {}, 0});
      continue;
    }
    elenco->totFile = sommaSicura(elenco->totFile, voce.alloc);
    if (prossimo == grandi.end() || *prossimo != i) continue;
    ++prossimo;
    elenco->voci.push_back({std::move(voce.name), false, voce.alloc, {}, 0});
  }
  return std::shared_ptr<const Elenco>(std::move(elenco));
}

/// Nothing when the listing is older than the last time sizes were forgotten.
std::optional<Result<MappaDisco::MappaPtr>> MappaDisco::rispondi(
    const std::string& percorso, std::shared_ptr<const Elenco> elenco, std::uint64_t generazione,
    Livelli livelli) {
  std::shared_ptr<Lavoro> nuovo;
  MappaPtr mappa;
  {
    const MutexLock hold(lock_);
    if (generazione != generazione_) return std::nullopt;
    if (MappaPtr nota = notaLocked(percorso)) return nota;
    const auto corrente = mappaRunning_.find(percorso);
    const bool lavora = corrente != mappaRunning_.end();
    Dimensioni& parziali = mappaPartial_[percorso];
    if (parziali.empty() && !lavora) mappaDinieghi_.erase(percorso);
    cercaNegliAlberiLocked(*elenco, percorso);
    mappa = std::make_shared<const Mappa>(componiLocked(percorso, *elenco));
    if (!mappa->misurando()) {
      // Files are cheap to look at again; sizes of folders are worth keeping.
      if (parziali.empty()) {
        mappaPartial_.erase(percorso);
      } else {
        conservaLocked(mappa);
        if (lavora) corrente->second->superato = true;  // a job above was done earlier
        if (livelli == Livelli::due) nuovo = secondoLivelloLocked(mappa);
      }
    } else if (lavora) {
      corrente->second->livelli |= livelli == Livelli::due;
    } else {
      nuovo = std::make_shared<Lavoro>();
      nuovo->percorso = percorso;
      for (const VoceMappa& voce : elenco->voci) {
        if (!voce.dir || parziali.count(voce.nome) != 0) continue;
        nuovo->nomi.push_back(voce.nome);
        nuovo->percorsi.push_back(unisci(percorso, voce.nome));
      }
      nuovo->elenco = std::move(elenco);
      nuovo->livelli = livelli == Livelli::due;
      mappaRunning_.emplace(percorso, nuovo);
    }
  }
  if (nuovo) avvia(nuovo);
  return mappa;
}

void MappaDisco::avvia(const std::shared_ptr<Lavoro>& lavoro) {
  const bool accolto = sfondo_.post([this, lavoro] {
    try {
      if (const MappaPtr finita = lavoro->finita ? lavoro->finita : misura(*lavoro)) scendi(finita);
    } catch (...) {
      // Stopped, or out of memory: the next request starts anew.
    }
    togli(*lavoro);
  });
  if (!accolto) togli(*lavoro);
}

/// The finished map when the second level is wanted too.
MappaDisco::MappaPtr MappaDisco::misura(Lavoro& lavoro) {
  walker::FolderNotes note(kMaxCartelle);
  const walker::Ambiente ambiente{
      lister_, [&](std::string_view percorso) { annotaDiniego(lavoro, percorso); }};
  const walker::Stop ferma = [&] { return sfondo_.stopping() || lavoro.superato; };
  // The last size is told together with all that follows from it: whoever sees the map complete
  // finds the levels below known too.
  std::size_t misurate = 0;
  std::pair<std::size_t, std::int64_t> ultima;
  walker::measureTrees(
      ambiente, lavoro.percorsi, ferma,
      [&](std::size_t indice, std::optional<std::int64_t> byte) {
        if (++misurate == lavoro.percorsi.size()) {
          ultima = {indice, byte.value_or(0)};
          return;
        }
        const MutexLock hold(lock_);
        if (lavoro.superato) return;
        mappaPartial_[lavoro.percorso][lavoro.nomi[indice]] = byte.value_or(0);
      },
      &note);
  auto albero = std::make_unique<Albero>();
  albero->percorso = lavoro.percorso;
  albero->cartelle = note.finish(lavoro.percorsi);
  albero->negati = lavoro.negati.with([](auto& negati) { return std::move(negati); });
  const MutexLock hold(lock_);
  if (lavoro.superato) return nullptr;
  mappaPartial_[lavoro.percorso][lavoro.nomi[ultima.first]] = ultima.second;
  conservaLocked(std::move(albero));
  const auto mappa = std::make_shared<const Mappa>(componiLocked(lavoro.percorso, *lavoro.elenco));
  if (mappa->misurando()) return nullptr;
  conservaLocked(mappa);
  return lavoro.livelli && !mappa->conFigli ? mappa : nullptr;
}

/// A folder that can't be opened is told twice; each path counts once.
void MappaDisco::annotaDiniego(Lavoro& lavoro, std::string_view percorso) {
  const bool nuovo = lavoro.negati.with(
      [&](auto& negati) { return negati.size() < kMaxNegati && negati.emplace(percorso).second; });
  if (!nuovo) return;
  const MutexLock hold(lock_);
  if (!lavoro.superato) ++mappaDinieghi_[lavoro.percorso];
}

void MappaDisco::togli(const Lavoro& lavoro) {
  {
    const MutexLock hold(lock_);
    mappaRunning_.erase(lavoro.percorso);
  }
  finito_.notify_all();
}

bool MappaDisco::attendi(std::string_view percorso, std::chrono::milliseconds attesa) {
  const auto fine = std::chrono::steady_clock::now() + attesa;
  const MutexLock hold(lock_);
  std::unique_lock<std::mutex> inner(lock_.inner(), std::adopt_lock);
  while (mappaRunning_.find(percorso) != mappaRunning_.end() &&
         finito_.wait_until(inner, fine) != std::cv_status::timeout) {
  }
  static_cast<void>(inner.release());
  return mappaRunning_.find(percorso) == mappaRunning_.end();
}

void MappaDisco::svuota() {
  const MutexLock hold(lock_);
  ++generazione_;
  mappaCache_.clear();
  ordineCache_.clear();
  mappaPartial_.clear();
  alberi_.clear();
  for (const auto& [percorso, lavoro] : mappaRunning_) lavoro->superato = true;
}

void MappaDisco::dimenticaLocked(const std::string& percorso) {
  ++generazione_;
  if (mappaCache_.erase(percorso) != 0) std::erase(ordineCache_, percorso);
  mappaPartial_.erase(percorso);
  mappaDinieghi_.erase(percorso);
  const auto lavoro = mappaRunning_.find(percorso);
  if (lavoro != mappaRunning_.end()) lavoro->second->superato = true;
  std::erase_if(alberi_, [&](const std::unique_ptr<Albero>& albero) {
    return dentroCartella(albero->percorso, percorso);
  });
  for (const std::unique_ptr<Albero>& albero : alberi_) {
    if (albero->parlaDi(percorso)) albero->dimenticate.push_back(percorso);
  }
}

MappaDisco::MappaPtr MappaDisco::notaLocked(std::string_view percorso) const {
  const auto nota = mappaCache_.find(percorso);
  return nota == mappaCache_.end() ? nullptr : nota->second;
}

/// The finished map takes the place of the single sizes.
void MappaDisco::conservaLocked(MappaPtr mappa) {
  mappaPartial_.erase(mappa->percorso);
  if (ordineCache_.size() == kMaxMappe) {
    mappaCache_.erase(ordineCache_.front());
    ordineCache_.pop_front();
  }
  ordineCache_.push_back(mappa->percorso);
  mappaCache_.emplace(mappa->percorso, std::move(mappa));
}

void MappaDisco::conservaLocked(std::unique_ptr<Albero> albero) {
  alberi_.push_front(std::move(albero));
  std::size_t cartelle = 0;
  for (std::size_t i = 0; i < alberi_.size(); ++i) {
    cartelle += alberi_[i]->cartelle.size();
    if (i > 0 && (i == kMaxAlberi || cartelle > kMaxCartelle)) {
      alberi_.resize(i);
      return;
    }
  }
}

/// Takes what earlier jobs know of the folder's children into `mappaPartial_`.
void MappaDisco::cercaNegliAlberiLocked(const Elenco& elenco, const std::string& percorso) {
  Dimensioni& parziali = mappaPartial_[percorso];
  const auto mancano = [&] {
    return std::any_of(elenco.voci.begin(), elenco.voci.end(), [&](const VoceMappa& voce) {
      return voce.dir && parziali.count(voce.nome) == 0;
    });
  };
  for (const std::unique_ptr<Albero>& albero : alberi_) {
    if (!albero->parlaDi(percorso)) continue;
    if (!mancano()) return;
    const auto note = albero->cartelle.in(percorso);
    if (note.empty()) continue;
    for (const VoceMappa& voce : elenco.voci) {
      if (!voce.dir) continue;
      const auto nota = note.find(voce.nome);
      if (nota != note.end()) parziali.emplace(voce.nome, nota->second);
    }
    const auto negati =
        std::count_if(albero->negati.begin(), albero->negati.end(), [&](const std::string& negato) {
          // What the listing was refused is counted with the listing.
          return dentroCartella(negato, percorso) && elenco.negati.count(negato) == 0;
        });
    if (negati > 0) mappaDinieghi_.try_emplace(percorso, negati);
  }
}

Mappa MappaDisco::componiLocked(const std::string& percorso, const Elenco& elenco) {
  const Dimensioni& parziali = mappaPartial_[percorso];
  Mappa mappa;
  mappa.percorso = percorso;
  mappa.tot = elenco.totFile;
  mappa.figli = elenco.figli;
  mappa.nonLeggibili = static_cast<std::int64_t>(elenco.negati.size());
  mappa.conFigli = std::none_of(elenco.voci.begin(), elenco.voci.end(),
                                [](const VoceMappa& voce) { return voce.dir; });
  const auto dinieghi = mappaDinieghi_.find(percorso);
  if (dinieghi != mappaDinieghi_.end()) mappa.nonLeggibili += dinieghi->second;

  std::vector<std::pair<std::int64_t, const VoceMappa*>> voci;
  voci.reserve(elenco.voci.size());
  for (const VoceMappa& voce : elenco.voci) {
    std::int64_t size = voce.size;
    if (voce.dir) {
      const auto nota = parziali.find(voce.nome);
      if (nota == parziali.end()) {
        ++mappa.ignoti;
      } else {
        size = nota->second;
        mappa.tot = sommaSicura(mappa.tot, size);
      }
    }
    voci.emplace_back(size, &voce);
  }
  std::stable_sort(voci.begin(), voci.end(),
                   [](const auto& a, const auto& b) { return a.first > b.first; });
  voci.resize(std::min(voci.size(), kMaxVoci));
  mappa.voci.reserve(voci.size());
  for (const auto& [size, voce] : voci) {
    mappa.voci.push_back({voce->nome, voce->dir, size, {}, 0});
  }
  return mappa;
}

}  // namespace pellak
