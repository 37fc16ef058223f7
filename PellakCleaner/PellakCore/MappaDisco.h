#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "PellakCore/base/BackgroundPool.h"
#include "PellakCore/base/JsonWriter.h"
#include "PellakCore/base/Mutex.h"
#include "platform/DirectoryLister.h"
#include "platform/Result.h"

namespace pellak {

/// An entry one level below a mapped folder's child.
struct FiglioMappa {
  std::string nome;  ///< bytes
  bool dir = false;
  std::int64_t size = 0;  ///< bytes on disk
};

/// One child of a mapped folder.
struct VoceMappa {
  std::string nome;  ///< bytes
  bool dir = false;
  std::int64_t size = 0;  ///< bytes on disk; negative while not known
  /// The largest entries of a child folder, `MappaDisco::kMaxFigli` at most. Only once the second
  /// level is known, and only of folders large enough to be drawn.
  std::vector<FiglioMappa> figli;
  std::size_t quanti = 0;  ///< entries of the child folder in all; 0 while `figli` is not known
};

/// What the map knows about one folder. Never changes once it is handed out.
struct Mappa {
  std::string percorso;
  std::int64_t tot = 0;           ///< of all children whose size is known
  std::vector<VoceMappa> voci;    ///< largest first, at most `MappaDisco::kMaxVoci`
  std::size_t figli = 0;          ///< children in all
  std::size_t ignoti = 0;         ///< child folders not measured yet
  std::int64_t nonLeggibili = 0;  ///< entries below that could not be read, as far as known
  bool conFigli = false;          ///< the second level is known

  bool misurando() const { return ignoti > 0; }
};

/// How far down a map looks.
enum class Livelli { uno, due };

/// The map as the page receives it.
void scriviMappa(JsonWriter& uscita, const Mappa& mappa, Livelli livelli = Livelli::uno);

/// The disk map: the children of a folder with what they take on disk.
///
/// A request never waits for a measure. Child folders not known yet are measured by a job on the
/// background pool, one job a folder, which publishes each as soon as it is known; who asks again
/// sees the sizes come in. A job also keeps the sizes of the folders further down, so that the
/// levels below a measured folder need no walk of their own. Sizes are those of the walker's
/// `treeSize`.
///
/// Any thread. One lock guards everything; it is never held while a folder is read. The pool must
/// have stopped before the map goes away; a running job notices within one folder.
class MappaDisco {
 public:
  static constexpr std::size_t kMaxVoci = 2000;
  static constexpr std::size_t kMaxFigli = 12;

  MappaDisco(DirectoryLister& lister, BackgroundPool& sfondo);
  ~MappaDisco();
  MappaDisco(const MappaDisco&) = delete;
  MappaDisco& operator=(const MappaDisco&) = delete;

  /// The map of a folder (a standardised absolute path), under its real path. `forza` forgets first
  /// what is known of it and of everything below it. A finished map is the same object until it is
  /// forgotten or the second level, which only who asks for `Livelli::due` waits for, joins it.
  /// Errors: those of opening or reading the folder.
  Result<std::shared_ptr<const Mappa>> richiedi(const std::string& richiesto, bool forza = false,
                                                Livelli livelli = Livelli::uno);

  /// Waits until no job measures the folder, at most for `attesa`; whether that is so.
  bool attendi(std::string_view percorso, std::chrono::milliseconds attesa);

  /// Forgets all sizes. Jobs that run give up and what they find out still is not kept.
  void svuota();

 private:
  struct Elenco;
  struct Lavoro;
  struct Albero;
  using Dimensioni = std::unordered_map<std::string, std::int64_t>;
  using MappaPtr = std::shared_ptr<const Mappa>;
  /// What the larger child folders hold, by the child's name.
  using Sotto = std::unordered_map<std::string, std::shared_ptr<const Elenco>>;

  static Result<std::shared_ptr<const Elenco>> elenca(DirectoryLister& lister,
                                                      const std::string& percorso);
  std::optional<Result<MappaPtr>> rispondi(const std::string& percorso,
                                           std::shared_ptr<const Elenco> elenco,
                                           std::uint64_t generazione, Livelli livelli);
  void avvia(const std::shared_ptr<Lavoro>& lavoro);
  MappaPtr misura(Lavoro& lavoro);
  void annotaDiniego(Lavoro& lavoro, std::string_view percorso);
  void togli(const Lavoro& lavoro);
  void scendi(const MappaPtr& mappa);
  Sotto elencaSotto(const Mappa& mappa) const;

  MappaPtr notaLocked(std::string_view percorso) const PELLAK_REQUIRES(lock_);
  std::shared_ptr<Lavoro> secondoLivelloLocked(const MappaPtr& mappa) PELLAK_REQUIRES(lock_);
  void aggiungiFigliLocked(Mappa& mappa, const Sotto& sotto) const PELLAK_REQUIRES(lock_);
  std::vector<FiglioMappa> figliLocked(const std::string& cartella, const Elenco& elenco) const
      PELLAK_REQUIRES(lock_);
  void conservaLocked(MappaPtr mappa) PELLAK_REQUIRES(lock_);
  void conservaLocked(std::unique_ptr<Albero> albero) PELLAK_REQUIRES(lock_);
  void dimenticaLocked(const std::string& percorso) PELLAK_REQUIRES(lock_);
  void cercaNegliAlberiLocked(const Elenco& elenco, const std::string& percorso)
      PELLAK_REQUIRES(lock_);
  Mappa componiLocked(const std::string& percorso, const Elenco& elenco) PELLAK_REQUIRES(lock_);

  DirectoryLister& lister_;
  BackgroundPool& sfondo_;

  Mutex lock_;
  std::condition_variable finito_;  ///< a job went
  /// Moves when sizes are forgotten: a listing made before that is not worth keeping.
  std::uint64_t generazione_ PELLAK_GUARDED_BY(lock_) = 0;
  std::map<std::string, MappaPtr, std::less<>> mappaCache_ PELLAK_GUARDED_BY(lock_);
  std::deque<std::string> ordineCache_ PELLAK_GUARDED_BY(lock_);  ///< oldest first
  std::map<std::string, Dimensioni, std::less<>> mappaPartial_ PELLAK_GUARDED_BY(lock_);
  std::map<std::string, std::shared_ptr<Lavoro>, std::less<>> mappaRunning_
      PELLAK_GUARDED_BY(lock_);
  std::map<std::string, std::int64_t, std::less<>> mappaDinieghi_ PELLAK_GUARDED_BY(lock_);
  std::deque<std::unique_ptr<Albero>> alberi_ PELLAK_GUARDED_BY(lock_);  ///< newest first
};

}  // namespace pellak
