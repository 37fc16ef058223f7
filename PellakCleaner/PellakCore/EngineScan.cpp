// The engine's queue runner: everything here runs on the engine's own queue.
#include <algorithm>
#include <exception>
#include <set>
#include <string_view>
#include <utility>

#include "PellakCore/Catalogo.h"
#include "PellakCore/Engine.h"
#include "PellakCore/base/ScanCancelled.h"

namespace pellak {
namespace {

bool contieneId(const std::vector<Finding>& findings, std::string_view id) {
  return std::any_of(findings.begin(), findings.end(),
                     [&](const Finding& finding) { return finding.id == id; });
}

}  // namespace

void Engine::eseguiCoda() {
  std::string id;
  while (prossimaSezione(id)) scandisci(id);
  fineCoda();
}

bool Engine::prossimaSezione(std::string& id) {
  const MutexLock hold(lock_);
  if (queue_.empty()) return false;
  id = std::move(queue_.front());
  queue_.pop_front();
  Sec& sezione = state_.find(id)->second;
  sezione.scanning = true;
  sezione.status = "Scansione in corso...";
  touchLocked();
  return true;
}

void Engine::scandisci(const std::string& id) {
  const Regole regole = effectiveRules();
  const Config impostazioni = ambiente_.impostazioni.leggi();
  Contatore contatore(ambiente_.store.home());
  const ScanContext contesto{regole,
                             impostazioni,
                             ambiente_.store.home(),
                             [this] { return stopFlag_.load(); },
                             [this, id](std::string stato) { mostraStato(id, std::move(stato)); },
                             contatore,
                             ambiente_.lister,
                             ambiente_.clock};
  try {
    Esito esito;
    withCounter(contatore, [&] { esito = raccogli(*cercaMeta(id), contesto); });
    pubblica(id, std::move(esito), contatore);
  } catch (const ScanCancelled&) {
    interrompi(id);
    return;
  }
  save();
  concludi(id);
}

std::vector<const RegolaCategoria*> Engine::categorie(const Meta& meta,
                                                      const Regole& regole) {
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

Engine::Esito Engine::raccogli(const Meta& meta, const ScanContext& contesto) {
  Esito esito;
  const auto pronta = [&] {
    if (contesto.stop()) throw ScanCancelled();
  };
  if (ambiente_.scanner.regole) {
    for (const RegolaCategoria* regola : categorie(meta, contesto.regole)) {
      pronta();
      contesto.status("Scansione: " + regola->name + "...");
      eseguiCategoria(
          [&] { return std::vector<Finding>{ambiente_.scanner.regole(contesto, *regola)}; }, esito);
    }
  }
  for (const std::string_view speciale : meta.specials) {
    pronta();
    const auto scanner = ambiente_.scanner.speciali.find(speciale);
    if (scanner == ambiente_.scanner.speciali.end()) continue;
    contesto.status(scanner->second.stato);
    eseguiCategoria([&] { return scanner->second.esegui(contesto); }, esito);
  }
  return esito;
}

void Engine::eseguiCategoria(const std::function<std::vector<Finding>()>& scanner, Esito& esito) {
  try {
    for (Finding& finding : scanner()) {
      if (!finding.vuoto()) esito.findings.push_back(std::move(finding));
    }
  } catch (const std::exception& errore) {
    esito.errore = errore.what();
  }
}

void Engine::pubblica(const std::string& id, Esito esito, const Contatore& contatore) {
  const MutexLock hold(lock_);
  Sec& sezione = state_.find(id)->second;
  if (!esito.errore.empty()) {
    // What the failing category found last time is still the best that is known of it.
    for (Finding& vecchio : sezione.findings) {
      if (!contieneId(esito.findings, vecchio.id)) esito.findings.push_back(std::move(vecchio));
    }
  }
  sezione.findings = std::move(esito.findings);
  ++sezione.findingsVer;
  sezione.scanned = true;
  sezione.lastScan = ambiente_.clock.now();
  sezione.denied = contatore.n();
  sezione.deniedTop = radiciPeggiori(contatore);
  sezione.status = esito.errore.empty() ? statoFinale(sezione) : "Errore: " + esito.errore;
  touchLocked();
}

void Engine::concludi(const std::string& id) {
  const MutexLock hold(lock_);
  state_.find(id)->second.scanning = false;
  if (stopFlag_) queue_.clear();
  touchLocked();
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

void Engine::fineCoda() {
  {
    const MutexLock hold(lock_);
    if (!autoPending_) return;
    autoPending_ = false;
  }
  if (ambiente_.controlloFinito) ambiente_.controlloFinito(*snapshot());
}

void Engine::mostraStato(const std::string& id, std::string stato) {
  const MutexLock hold(lock_);
  state_.find(id)->second.status = std::move(stato);
  touchLocked();
}

}  // namespace pellak
