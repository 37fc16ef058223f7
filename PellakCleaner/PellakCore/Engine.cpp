#include "PellakCore/Engine.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <utility>

#include "PellakCore/Catalogo.h"
#include "PellakCore/base/Motivo.h"

namespace pellak {
namespace {

constexpr std::size_t kMaxRulesBytes = std::size_t{16} << 20U;
/// Icons come in bursts; one write serves a burst.
constexpr std::chrono::milliseconds kIconSaveDelay{2000};
/// Folders measured at once; each measure has threads of its own.
constexpr std::size_t kMapJobs = 2;

}  // namespace

Engine::Engine(AmbienteEngine ambiente)
    : ambiente_(std::move(ambiente)),
      icone_(ambiente_.files, ambiente_.applicazioni, ambiente_.store.icone()),
      mappa_(ambiente_.lister, sfondo_),
      sfondo_(kMapJobs) {
  {
    const MutexLock ordine(saveLock_);
    stampRisultati_ = ambiente_.files.stamp(ambiente_.store.risultati());
    const MutexLock hold(lock_);
    for (const Meta& meta : metas()) state_.emplace(meta.id, Sec());
    caricaRisultati();
  }
  icone_.carica();
}

Engine::~Engine() {
  stop();
  sfondo_.stop();
  attendiFine();
  if (!icone_.salva()) avvisa("icone non salvate");
}

void Engine::dopo(std::chrono::milliseconds attesa, std::function<void()> task) {
  workQ_.postAfter(attesa, std::move(task));
}

void Engine::avvisa(const std::string& testo) const {
  if (ambiente_.avviso) ambiente_.avviso(testo);
}

bool Engine::start(std::string_view sezione, bool automatica, std::vector<std::string> radici) {
  {
    const MutexLock hold(lock_);
    if (occupatoLocked()) return false;
    stopFlag_ = false;
    autoPending_ = automatica;
    radiciInPiu_ = std::move(radici);
    for (const Meta& meta : metas()) {
      if (sezione == "all" || sezione == meta.id) queue_.emplace_back(meta.id);
    }
    touchLocked();
  }
  try {
    workQ_.post([this] { eseguiCoda(); });
  } catch (const std::exception&) {
    const MutexLock hold(lock_);
    queue_.clear();
    touchLocked();
    throw;
  }
  return true;
}

void Engine::stop() noexcept { stopFlag_ = true; }

void Engine::attendiFine() { workQ_.drain(); }

void Engine::attendiFine(std::chrono::milliseconds attesa) { workQ_.drainFor(attesa); }

bool Engine::occupato() {
  const MutexLock hold(lock_);
  return occupatoLocked();
}

void Engine::touch() {
  const MutexLock hold(lock_);
  touchLocked();
}

void Engine::touchLocked() {
  if (__builtin_add_overflow(stateVer_, 1, &stateVer_)) std::abort();
  cachedState_ = nullptr;
}

bool Engine::occupatoLocked() const {
  return !queue_.empty() || std::any_of(state_.begin(), state_.end(),
                                        [](const auto& voce) { return voce.second.scanning; });
}

bool Engine::senzaRisultati(std::string_view categoria) {
  const Regole regole = effectiveRules();
  const MutexLock hold(lock_);
  for (const Meta& meta : metas()) {
    if (state_.find(meta.id)->second.scanned) continue;
    const auto sue = categorie(meta, regole);
    const bool qui =
        std::count(meta.cats.begin(), meta.cats.end(), categoria) > 0 ||
        std::count(meta.specials.begin(), meta.specials.end(), categoria) > 0 ||
        std::any_of(sue.begin(), sue.end(), [&](const auto* r) { return r->id == categoria; });
    if (qui) return true;
  }
  return false;
}

void Engine::invalidaDisco() {
  mappa_.svuota();
  touch();
}

Regole Engine::effectiveRules() const {
  Regole regole;
  Result<std::string> testo = ambiente_.files.read(ambiente_.rulesPath, kMaxRulesBytes);
  if (!testo && testo.error().kind == ErrorKind::missing && ambiente_.regoleIncorporate) {
    if (auto incorporate = ambiente_.regoleIncorporate()) testo = std::move(*incorporate);
  }
  Result<Regole> lette = testo ? leggiRegole(*testo) : Result<Regole>(testo.error());
  if (lette) {
    regole = std::move(*lette);
  } else {
    regole.guasto = "file delle regole illeggibile";
    avvisa(regole.guasto + " (" + ambiente_.rulesPath + "): " + motivo(lette.error()));
  }
  return conImpostazioni(conSpostamenti(std::move(regole), ambiente_.spostamenti),
                         ambiente_.impostazioni.leggi());
}

const Finding* Engine::cercaLocked(std::string_view id) const {
  for (const Meta& meta : metas()) {
    for (const Finding& finding : state_.find(meta.id)->second.findings) {
      if (finding.id == id) return &finding;
    }
  }
  return nullptr;
}

std::optional<PaginaVoci> Engine::voci(std::string_view finding, OrdineVoci ordine, std::int64_t da,
                                       std::int64_t quante) {
  const MutexLock hold(lock_);
  const Finding* trovato = cercaLocked(finding);
  if (trovato == nullptr) return {};
  PaginaVoci pagina;
  pagina.soloReport = trovato->mode != "delete" || trovato->unmeasured;
  pagina.count = static_cast<std::int64_t>(trovato->items.size());
  pagina.da = std::max<std::int64_t>(da, 0);
  const auto prima = static_cast<std::size_t>(std::min(pagina.da, pagina.count));
  const auto numero = std::min(static_cast<std::size_t>(std::max<std::int64_t>(quante, 0)),
                               trovato->items.size() - prima);
  for (const std::size_t indice : paginaOrdinata(trovato->items, ordine, prima, numero)) {
    pagina.items.push_back(trovato->items[indice]);
  }
  return pagina;
}

std::optional<std::vector<std::string>> Engine::percorsiGruppo(std::string_view finding,
                                                               std::int64_t indice) {
  const MutexLock hold(lock_);
  const Finding* trovato = cercaLocked(finding);
  if (trovato == nullptr || indice < 0) return {};
  const auto posto = static_cast<std::size_t>(indice);
  if (posto >= trovato->groups.size()) return {};
  return trovato->groups[posto].paths;
}

std::vector<Engine::FindingDiSezione> Engine::findings(std::string_view sezione) {
  const MutexLock hold(lock_);
  std::vector<FindingDiSezione> copie;
  for (const Meta& meta : metas()) {
    if (!sezione.empty() && meta.id != sezione) continue;
    for (const Finding& finding : state_.find(meta.id)->second.findings) {
      copie.push_back({std::string(meta.id), finding});
    }
  }
  return copie;
}

std::int64_t Engine::libera(const std::vector<std::string>& sezioni) {
  const MutexLock hold(lock_);
  std::vector<const std::vector<Finding>*> liste;
  for (const std::string& id : sezioni) {
    const auto sezione = state_.find(id);
    if (sezione != state_.end()) liste.push_back(&sezione->second.findings);
  }
  return pellak::libera(liste);
}

std::optional<Finding> Engine::finding(std::string_view id) {
  const MutexLock hold(lock_);
  const Finding* trovato = cercaLocked(id);
  if (trovato == nullptr) return {};
  return *trovato;
}

bool Engine::modificaFinding(std::string_view id, const std::function<void(Finding&)>& modifica) {
  const MutexLock hold(lock_);
  for (auto& [nome, sezione] : state_) {
    for (Finding& finding : sezione.findings) {
      if (finding.id != id) continue;
      modifica(finding);
      ++sezione.findingsVer;
      touchLocked();
      return true;
    }
  }
  return false;
}

void Engine::togli(std::string_view finding, const std::unordered_set<std::string_view>& via) {
  {
    const MutexLock hold(lock_);
    const bool scansione = std::any_of(state_.begin(), state_.end(),
                                       [](const auto& voce) { return voce.second.scanning; });
    for (const std::string_view percorso : via) {
      if (scansione) spariti_.aggiungi(percorso);
    }
  }
  modificaFinding(finding, [&](Finding& voce) {
    pellak::togli(voce, [&](std::string_view percorso) { return via.contains(percorso); });
  });
}

std::string Engine::icona(std::string_view chiave) {
  const bool nuova = icone_.nota(chiave).empty();
  std::string url = icone_.icona(chiave);
  if (nuova && !url.empty()) {
    const MutexLock hold(lock_);
    // Written findings carry the icons that were known then.
    for (auto& [id, sezione] : state_) {
      const bool conIcone = std::any_of(
          sezione.findings.begin(), sezione.findings.end(),
          [](const Finding& finding) { return !finding.groups.empty() && !finding.duplicati(); });
      if (conIcone) ++sezione.findingsVer;
    }
    touchLocked();
  }
  if (icone_.daSalvare()) salvaIconePoi();
  return url;
}

void Engine::salvaIconePoi() {
  if (iconeInAttesa_.exchange(true)) return;
  workQ_.postAfter(kIconSaveDelay, [this] {
    iconeInAttesa_ = false;
    if (!icone_.salva()) avvisa("icone non salvate");
  });
}

}  // namespace pellak
