// The engine's results file: read at the start, written after scans and moves.
#include <array>
#include <string_view>
#include <utility>

#include "PellakCore/Catalogo.h"
#include "PellakCore/Engine.h"
#include "PellakCore/base/Motivo.h"

namespace pellak {
namespace {

constexpr std::size_t kMaxResultBytes = std::size_t{1} << 30U;

}  // namespace

void Engine::caricaRisultati() {
  const Result<std::string> salvati =
      ambiente_.files.read(ambiente_.store.risultati(), kMaxResultBytes);
  if (!salvati && salvati.error().kind == ErrorKind::missing) return;
  const auto letti = salvati ? leggiRisultati(*salvati, state_) : Result<void>(salvati.error());
  if (letti) return;
  daRileggere_ = true;
  Error errore = letti.error();
  errore.percorso = ambiente_.store.risultati();
  nonLetti_ = errore.kind == ErrorKind::invalid
                  ? "risultati salvati illeggibili: si riparte da zero (" + errore.percorso + ")"
                  : "risultati salvati non letti: " + motivoCompleto(errore);
  avvisa(nonLetti_);
}

/// What stands in the file: newer scans of another process win over ours. What is no results file
/// is put aside. An error means that the file may be good and must not be replaced.
Result<void> Engine::accogliAltri() {
  Sezioni altre;
  for (const Meta& meta : metas()) altre.emplace(meta.id, Sec());
  const std::string file = ambiente_.store.risultati();
  const Result<std::string> salvati = ambiente_.files.read(file, kMaxResultBytes);
  if (!salvati && salvati.error().kind == ErrorKind::missing) return {};
  auto letti = salvati ? leggiRisultati(*salvati, altre) : Result<void>(salvati.error());
  if (!letti && letti.error().kind == ErrorKind::invalid) return ambiente_.files.setAside(file);
  if (!letti) return letti;
  const MutexLock hold(lock_);
  for (auto& [id, sezione] : state_) {
    Sec& altra = altre.find(id)->second;
    if (sezione.scanning || altra.lastScan <= sezione.lastScan) continue;
    altra.findingsVer = sezione.findingsVer + 1;
    sezione = std::move(altra);
    touchLocked();
  }
  return {};
}

Result<void> Engine::scriviFile() {
  const std::string file = ambiente_.store.risultati();
  const auto blocco = ambiente_.files.lock(ambiente_.store.blocco());
  if (!blocco) return blocco.error();
  if (daRileggere_ || ambiente_.files.stamp(file) != stampRisultati_) {
    if (auto letti = accogliAltri(); !letti) return letti;
    daRileggere_ = false;
  }
  std::string testo;
  {
    const MutexLock hold(lock_);
    testo = scriviRisultati(state_);
  }
  const std::array<std::string_view, 1> pezzi = {testo};
  auto scritto = ambiente_.files.replace(file, pezzi);
  stampRisultati_ = ambiente_.files.stamp(file);
  return scritto;
}

void Engine::save() {
  const MutexLock ordine(saveLock_);
  const auto scritto = scriviFile();
  if (!scritto) avvisa("risultati non salvati: " + motivoCompleto(scritto.error()));
  const MutexLock hold(lock_);
  for (auto& [id, sezione] : state_) {
    if (!sezione.daSalvare) continue;
    sezione.daSalvare = !scritto;
    sezione.nonSalvata = scritto ? std::string() : motivo(scritto.error());
    touchLocked();
  }
}

}  // namespace pellak
