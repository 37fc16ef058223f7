// The engine's queue runner: everything here runs on the engine's own queue.
#include <algorithm>
#include <exception>
#include <iterator>
#include <set>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

#include "PellakCore/Catalogo.h"
#include "PellakCore/Engine.h"
#include "PellakCore/base/Motivo.h"
#include "PellakCore/base/ScanCancelled.h"

namespace pellak {
namespace {

bool eSpeciale(const Meta& meta, std::string_view categoria) {
  return std::count(meta.specials.begin(), meta.specials.end(), categoria) > 0;
}

}  // namespace

void Engine::eseguiCoda() {
  std::string id;
  bool automatica = false;
  while (prossimaSezione(id, automatica)) {
    if (automatica && ambiente_.sfondo != nullptr) {
      scandisciInDisparte(id);
    } else {
      scandisci(id);
    }
  }
}

/// A thread of its own, because a lowered one may not be able to rise again.
void Engine::scandisciInDisparte(const std::string& id) {
  try {
    std::thread([&] {
      applyToThread(ambiente_.sfondo);
      scandisci(id);
    }).join();
  } catch (const std::system_error&) {
    scandisci(id);
  }
}

bool Engine::prossimaSezione(std::string& id, bool& automatica) {
  const MutexLock hold(lock_);
  if (queue_.empty()) return false;
  automatica = autoPending_;
  id = std::move(queue_.front());
  queue_.pop_front();
  Sec& sezione = state_.find(id)->second;
  sezione.scanning = true;
  spariti_.svuota();
  sezione.esito = std::move(sezione.status);
  sezione.status = "Scansione in corso...";
  touchLocked();
  return true;
}

Regole Engine::regoleDellaScansione() {
  Regole regole = effectiveRules();
  const MutexLock hold(lock_);
  for (auto* radici : {&regole.duplicati.roots, &regole.grandi.roots}) {
    radici->insert(radici->end(), radiciInPiu_.begin(), radiciInPiu_.end());
  }
  return regole;
}

std::vector<Mount> Engine::volumi() const {
  if (ambiente_.montaggi == nullptr) return {};
  auto letti = ambiente_.montaggi->list();
  if (letti) return std::move(letti).value();
  avvisa("volumi montati non noti: " + motivo(letti.error()));
  return {};
}

void Engine::scandisci(const std::string& id) {
  const Regole regole = regoleDellaScansione();
  const Config impostazioni = ambiente_.impostazioni.leggi();
  Contatore contatore(ambiente_.store.home());
  Esito esito;
  const ScanContext contesto{regole,
                             impostazioni,
                             ambiente_.store.home(),
                             [this] { return stopFlag_.load(); },
                             [this, id](std::string stato) { mostraStato(id, std::move(stato)); },
                             contatore,
                             ambiente_.lister,
                             ambiente_.clock,
                             volumi(),
                             [&](std::string nota) { esito.senzaNulla = std::move(nota); }};
  try {
    withCounter(contatore, [&] { raccogli(*cercaMeta(id), contesto, esito); });
    pubblica(id, std::move(esito), contatore);
  } catch (const ScanCancelled&) {
    interrompi(id);
    return;
  }
  save();
  if (concludi(id) && ambiente_.controlloFinito) ambiente_.controlloFinito(*snapshot());
}

std::vector<const RegolaCategoria*> Engine::categorie(const Meta& meta, const Regole& regole) {
  std::vector<const RegolaCategoria*> scelte;
  std::set<std::string_view> viste;
  for (const std::string_view cat : meta.cats) {
    const RegolaCategoria* regola = regole.cerca(cat);
    if (regola != nullptr && viste.insert(cat).second) scelte.push_back(regola);
  }
  for (const RegolaCategoria& regola : regole.categorie) {
    if (regola.section == meta.id && viste.insert(regola.id).second) scelte.push_back(&regola);
  }
  return scelte;
}

/// Whether categories of the rules file are among the section's, as far as that is known without
/// the file.
bool Engine::usaRegole(const Meta& meta) {
  if (!meta.cats.empty()) return true;
  const MutexLock hold(lock_);
  const std::vector<Finding>& vecchi = state_.find(meta.id)->second.findings;
  return std::any_of(vecchi.begin(), vecchi.end(),
                     [&](const Finding& finding) { return !eSpeciale(meta, finding.categoria); });
}

void Engine::raccogli(const Meta& meta, const ScanContext& contesto, Esito& esito) {
  const auto pronta = [&] {
    if (contesto.stop()) throw ScanCancelled();
  };
  if (ambiente_.scanner.regole && !contesto.regole.guasto.empty() && usaRegole(meta)) {
    // Without rules nothing was looked at: that must not read as a clean disk.
    esito.errore = contesto.regole.guasto;
    tieniVecchi(
        meta, [&](const Finding& f) { return !eSpeciale(meta, f.categoria); }, esito);
  } else if (ambiente_.scanner.regole) {
    for (const RegolaCategoria* regola : categorie(meta, contesto.regole)) {
      pronta();
      contesto.status("Scansione: " + regola->name + "...");
      eseguiCategoria(
          meta, regola->id,
          [&] { return std::vector<Finding>{ambiente_.scanner.regole(contesto, *regola)}; }, esito);
    }
  }
  for (const std::string_view speciale : meta.specials) {
    pronta();
    const auto scanner = ambiente_.scanner.speciali.find(speciale);
    if (scanner == ambiente_.scanner.speciali.end()) continue;
    contesto.status(scanner->second.stato);
    eseguiCategoria(
        meta, speciale, [&] { return scanner->second.esegui(contesto); }, esito);
  }
}

void Engine::eseguiCategoria(const Meta& meta, std::string_view id, const Scansione& scanner,
                             Esito& esito) {
  try {
    for (Finding& finding : scanner()) {
      // That a scanner of its own found nothing is worth a line; that a rule did is not.
      const bool muta = finding.vuoto() && finding.trattenuti.empty() && !eSpeciale(meta, id);
      if (muta) continue;
      finding.categoria = id;
      esito.findings.push_back(std::move(finding));
    }
  } catch (const std::exception& errore) {
    esito.errore = errore.what();
    // What it found last time is still the best that is known of it.
    tieniVecchi(
        meta, [&](const Finding& f) { return f.categoria == id; }, esito);
  }
}

void Engine::tieniVecchi(const Meta& meta, const std::function<bool(const Finding&)>& quali,
                         Esito& esito) {
  const MutexLock hold(lock_);
  const std::vector<Finding>& vecchi = state_.find(meta.id)->second.findings;
  std::copy_if(vecchi.begin(), vecchi.end(), std::back_inserter(esito.findings), quali);
}

void Engine::pubblica(const std::string& id, Esito esito, const Contatore& contatore) {
  const MutexLock hold(lock_);
  Sec& sezione = state_.find(id)->second;
  for (Finding& finding : esito.findings) pellak::togli(finding, spariti_);
  sezione.findings = std::move(esito.findings);
  ++sezione.findingsVer;
  sezione.scanned = true;
  sezione.daSalvare = true;
  sezione.nonSalvata.clear();
  sezione.lastScan = ambiente_.clock.now();
  sezione.denied = contatore.n();
  sezione.deniedTop = radiciPeggiori(contatore);
  sezione.status =
      esito.errore.empty() ? statoFinale(sezione, esito.senzaNulla) : "Errore: " + esito.errore;
  sezione.esito = sezione.status;
  touchLocked();
}

bool Engine::concludi(const std::string& id) {
  const MutexLock hold(lock_);
  state_.find(id)->second.scanning = false;
  if (stopFlag_) queue_.clear();
  touchLocked();
  // From here on a new scan may begin: whose end this was is decided under the same lock.
  return queue_.empty() && std::exchange(autoPending_, false);
}

void Engine::interrompi(const std::string& id) {
  const MutexLock hold(lock_);
  Sec& sezione = state_.find(id)->second;
  sezione.status = "Scansione interrotta.";
  sezione.scanning = false;
  queue_.clear();
  autoPending_ = false;
  touchLocked();
}

void Engine::mostraStato(const std::string& id, std::string stato) {
  const MutexLock hold(lock_);
  state_.find(id)->second.status = std::move(stato);
  touchLocked();
}

}  // namespace pellak
