#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "PellakCore/IconCache.h"
#include "PellakCore/Impostazioni.h"
#include "PellakCore/Libera.h"
#include "PellakCore/MappaDisco.h"
#include "PellakCore/OrdineVoci.h"
#include "PellakCore/Regole.h"
#include "PellakCore/Risultati.h"
#include "PellakCore/ScanContext.h"
#include "PellakCore/Snapshot.h"
#include "PellakCore/Spariti.h"
#include "PellakCore/StatoTesto.h"
#include "PellakCore/Store.h"
#include "PellakCore/base/BackgroundPool.h"
#include "PellakCore/base/Mutex.h"
#include "PellakCore/base/SerialQueue.h"
#include "PellakCore/base/ThreadSetting.h"
#include "platform/Applications.h"
#include "platform/Clock.h"
#include "platform/DirectoryLister.h"
#include "platform/Files.h"
#include "platform/Mounts.h"

namespace pellak {

/// What the engine works with. The references outlive it.
struct AmbienteEngine {
  Files& files;
  Clock& clock;
  DirectoryLister& lister;
  Applications& applicazioni;
  Impostazioni& impostazioni;
  Store store;
  std::string rulesPath;
  std::vector<Spostamento> spostamenti;  ///< applied to the places of the rules
  TabellaScanner scanner;
  /// One line about something the user should know and no reply carries (results not saved).
  /// Any thread.
  std::function<void(const std::string&)> avviso;
  /// Called on the engine's queue when a scan started by the periodic check is over.
  std::function<void(const Snapshot&)> controlloFinito;
  /// The rules inside the executable, for when there is no rules file; may give nothing.
  std::function<std::optional<std::string>()> regoleIncorporate = nullptr;
  Mounts* montaggi = nullptr;  ///< none: nothing is known of other volumes
  /// What the threads of the periodic check's scan do to themselves, so that it disturbs nobody.
  ThreadSetting sfondo = nullptr;
};

/// One page of a finding's entries.
struct PaginaVoci {
  std::int64_t count = 0;  ///< all entries of the finding
  std::int64_t da = 0;
  std::vector<Voce> items;
  bool soloReport = false;  ///< nothing of the finding comes free
};

/// Owns what the page shows about the disk: the scan state and the findings of every section,
/// the queue of sections to scan, the saved results, the icons and the disk map.
///
/// Every function may be called from any thread. One lock guards the state; it is never held
/// while a scanner runs, a file is written or an icon drawn. Scans run on one serial queue.
/// Destroying the engine stops a running scan and waits for it.
class Engine {
 public:
  /// Loads the saved results and icons.
  explicit Engine(AmbienteEngine ambiente);
  ~Engine();
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  /// Why the saved results could not be read at the start, as it was told then; empty when they
  /// were, or there were none.
  const std::string& nonLetti() const { return nonLetti_; }

  /// Queues the scan of one section of the catalogue, or of all of them ("all"). False when a
  /// scan is queued or running; then nothing changes. `automatica` marks the periodic check's;
  /// `radici` are folders that this scan searches for duplicates and large files besides those of
  /// the rules.
  bool start(std::string_view sezione, bool automatica = false,
             std::vector<std::string> radici = {});

  /// Runs a task on the engine's queue, behind the scans, once `attesa` has passed. Dropped when
  /// the engine goes first.
  void dopo(std::chrono::milliseconds attesa, std::function<void()> task);

  /// Asks the running scan to stop. Takes no lock and returns at once.
  void stop() noexcept;

  /// Waits until no scan is queued or running and its results are written. Not from the engine's
  /// own queue.
  void attendiFine();
  /// The same for at most `attesa`.
  void attendiFine(std::chrono::milliseconds attesa);

  /// Whether a scan is queued or running.
  bool occupato();

  /// The current state; the same object while nothing moved.
  std::shared_ptr<const Snapshot> snapshot();

  /// Makes the next snapshot a new one. For whoever changed what the page shows.
  void touch();

  /// Writes all results to the results file, replacing it at once. Sections that another process
  /// has scanned since are taken over from the file first; a file that holds no results is kept
  /// aside as "risultati.json.guasto". A failure, also to read a file that may be good, is
  /// announced through `avviso` and by the status of the sections it is about; it leaves the old
  /// file.
  void save();

  /// Drops what is derived from the disk's contents; called before every route that changes
  /// findings.
  void invalidaDisco();

  /// The rules file with the user's settings over it; default rules when the file can't be read.
  Regole effectiveRules() const;

  /// One page of a finding's entries; nothing when no section has that finding.
  std::optional<PaginaVoci> voci(std::string_view finding, OrdineVoci ordine, std::int64_t da,
                                 std::int64_t quante);

  /// The paths of one group; nothing when the finding or the index is not there.
  std::optional<std::vector<std::string>> percorsiGruppo(std::string_view finding,
                                                         std::int64_t indice);

  /// Copies of the findings of one section, or of all of them when `sezione` is empty.
  struct FindingDiSezione {
    std::string sezione;
    Finding finding;
  };
  std::vector<FindingDiSezione> findings(std::string_view sezione = {});

  /// Whether a category of the catalogue or the rules is one of a section without results.
  bool senzaRisultati(std::string_view categoria);

  /// What emptying the Trash surely frees of these sections together, each path once.
  std::int64_t libera(const std::vector<std::string>& sezioni);

  /// A copy of one finding of whatever section; nothing when there is none.
  std::optional<Finding> finding(std::string_view id);

  /// Changes one finding in place under the lock and makes the next snapshot a new one; false when
  /// there is no such finding. `modifica` must not call the engine.
  bool modificaFinding(std::string_view id, const std::function<void(Finding&)>& modifica);

  /// Takes entries that are gone out of a finding. While a section is being scanned they are kept
  /// in mind: what that scan found before they went is not published.
  void togli(std::string_view finding, const std::unordered_set<std::string_view>& via);

  /// The icon of an application as a data URL; empty when there is none.
  std::string icona(std::string_view chiave);

  MappaDisco& mappa() { return mappa_; }

  const Store& store() const { return ambiente_.store; }

 private:
  struct Esito {
    std::vector<Finding> findings;
    std::string errore;  ///< text of the last category that failed
    /// The result line where nothing was found and nothing refused.
    std::string senzaNulla = "Niente da segnalare.";
  };
  using Scansione = std::function<std::vector<Finding>()>;

  void eseguiCoda();
  bool prossimaSezione(std::string& id, bool& automatica);
  void scandisciInDisparte(const std::string& id);
  void scandisci(const std::string& id);
  Regole regoleDellaScansione();
  std::vector<Mount> volumi() const;
  bool usaRegole(const Meta& meta);
  void raccogli(const Meta& meta, const ScanContext& contesto, Esito& esito);
  void eseguiCategoria(const Meta& meta, std::string_view id, const Scansione& scanner,
                       Esito& esito);
  void tieniVecchi(const Meta& meta, const std::function<bool(const Finding&)>& quali,
                   Esito& esito);
  static std::vector<const RegolaCategoria*> categorie(const Meta& meta, const Regole& regole);
  void pubblica(const std::string& id, Esito esito, const Contatore& contatore);
  void interrompi(const std::string& id);
  /// Whether this was the end of the periodic check's scan.
  bool concludi(const std::string& id);
  void caricaRisultati() PELLAK_REQUIRES(lock_, saveLock_);
  Result<void> accogliAltri();
  Result<void> scriviFile() PELLAK_REQUIRES(saveLock_);
  bool scandibile(const Meta& meta) const;
  bool disponibile(const Meta& meta) const;
  void mostraStato(const std::string& id, std::string stato);
  void avvisa(const std::string& testo) const;
  void salvaIconePoi();

  void touchLocked() PELLAK_REQUIRES(lock_);
  bool occupatoLocked() const PELLAK_REQUIRES(lock_);
  const Finding* cercaLocked(std::string_view id) const PELLAK_REQUIRES(lock_);
  RiassuntoSezione riassuntoLocked(const Meta& meta) PELLAK_REQUIRES(lock_);
  std::shared_ptr<const Snapshot> costruisciLocked() PELLAK_REQUIRES(lock_);

  const AmbienteEngine ambiente_;
  IconCache icone_;
  MappaDisco mappa_;
  std::atomic<bool> stopFlag_{false};
  std::atomic<bool> iconeInAttesa_{false};

  /// Orders whole saves, so that an older state never replaces a newer one. Taken before `lock_`.
  Mutex saveLock_;
  /// The results file as this process last read or wrote it.
  std::string stampRisultati_ PELLAK_GUARDED_BY(saveLock_);
  /// What the file holds is not known and must be before it is replaced.
  bool daRileggere_ PELLAK_GUARDED_BY(saveLock_) = false;
  std::string nonLetti_;  ///< written by the constructor alone
  Mutex lock_;
  Sezioni state_ PELLAK_GUARDED_BY(lock_);
  /// What went while the section that is being scanned was.
  Spariti spariti_ PELLAK_GUARDED_BY(lock_);
  std::deque<std::string> queue_ PELLAK_GUARDED_BY(lock_);
  bool autoPending_ PELLAK_GUARDED_BY(lock_) = false;
  std::vector<std::string> radiciInPiu_ PELLAK_GUARDED_BY(lock_);
  std::int64_t stateVer_ PELLAK_GUARDED_BY(lock_) = 1;
  StatoTesto statoTesto_ PELLAK_GUARDED_BY(lock_);
  LiberaSezioni libera_ PELLAK_GUARDED_BY(lock_);
  std::shared_ptr<const Snapshot> cachedState_ PELLAK_GUARDED_BY(lock_);

  /// The jobs of the map. Stopped before the map goes away.
  BackgroundPool sfondo_;

  /// Last, so that it is joined before what its tasks use goes away.
  SerialQueue workQ_{"pellak.engine"};
};

}  // namespace pellak
