#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "PellakCore/Finding.h"
#include "PellakCore/Store.h"
#include "platform/Clock.h"
#include "platform/DirectoryLister.h"
#include "platform/FileReader.h"
#include "platform/Files.h"
#include "platform/TrashCan.h"
#include "trash/Custode.h"
#include "trash/Intenti.h"
#include "trash/Registro.h"
#include "trash/Sguardi.h"

namespace pellak::trash {

/// What moves are made with. The references outlive it.
struct AmbienteCestino {
  Files& files;
  FileReader& reader;
  DirectoryLister& lister;
  Clock& clock;
  TrashCan& can;
  Store store;
  /// Told once after a batch that moved something; returns at once. May be empty.
  std::function<void()> suono;
  /// The user's standard folders that have other names than the usual ones; absolute, real.
  std::vector<std::string> cartelleUtente = {};
};

/// An item that is wanted in the Trash, with the size the scan measured, and as the scan saw it:
/// what is another file now, was written to or is no longer a folder stays.
struct Candidato {
  std::string percorso;
  std::int64_t size = 0;
  std::int64_t lunghezza = 0;  ///< logical bytes
  Identita identita = {};      ///< unknown: not compared
};

/// Items that go under one condition. Right before the first of them moves `ancora` is asked;
/// when it says no, none of them does. Empty: always yes.
struct Lotto {
  std::vector<Candidato> voci;
  std::function<bool()> ancora;
  /// All or nothing: when one of them can't move, those that did come back and all have failed.
  bool insieme = false;
};

struct Fallito {
  std::string percorso;
  std::string err;         ///< the same words on every system
  std::string causa = {};  ///< the true reason on this one, when it is known and says more
};

/// What came of an operation. With `err` nothing was moved.
struct Esito {
  std::string err;
  int stato = 200;
  std::string avviso;    ///< the items moved, but something about them went wrong
  std::string nomeApp;   ///< the application that keeps the operation from happening
  std::string op;        ///< the record's id, when something moved
  std::int64_t tot = 0;  ///< bytes that moved, as the scan measured them
  std::vector<Mossa> mosse;
  std::vector<Fallito> failed;  ///< of a restore, too: one for each of `errors`
  std::vector<std::string> saltati;
  std::vector<std::string> errors;      ///< of a restore: file name and why
  std::vector<std::string> tornati;     ///< of a restore: where each of `mosse` lies now
  std::vector<std::string> rinominati;  ///< those of them that found their place taken
};

/// An operation that is refused.
Esito rifiuto(std::string testo, int stato = 200);

/// Moves items to the Trash and back and keeps the books of it.
///
/// Before the first move an intent is on disk; before the return the moves and their record are.
/// `riprendi` finishes the books of a process that died in between, and so does the next
/// operation. One operation at a time in a home folder, between processes too. Any thread.
class Cestino {
 public:
  /// The title of the record, from the number of items.
  using Titolo = std::function<std::string(std::size_t)>;

  explicit Cestino(AmbienteCestino ambiente);

  /// One failure never stops the rest.
  Esito trashWithSound(const Titolo& titolo, std::span<const Lotto> lotti);

  /// Puts back all items of an operation, or one of them.
  Esito restore(std::string_view operazione, std::optional<std::int64_t> indice);

  /// Turns what an interrupted operation moved into a record. Does nothing while another process
  /// is at work on the Trash.
  void riprendi();

  /// Visits the operations, newest first, those of an interrupted process included.
  /// An error is the log's that can't be read.
  Result<void> log(const std::function<void(const Operazione&)>& visita);

 private:
  struct Lavoro;
  struct Ritorno;
  struct Scelto;

  Result<std::unique_ptr<FileLock>> blocco();
  Result<void> annota(const Intento& intento);
  static Esito rifiutoDi(const Error& errore);
  void prepara(Lavoro& lavoro, std::span<const Lotto> lotti) const;
  void preparaUno(Lavoro& lavoro, const Candidato& voce, std::size_t lotto) const;
  static void lasciaStare(Lavoro& lavoro, std::size_t primo);
  static void ritira(Lavoro& lavoro, std::size_t lotto);
  Result<void> trashAll(Lavoro& lavoro, std::span<const Lotto> lotti);
  static void annuncia(Lavoro& lavoro);
  static void muoviUno(Lavoro& lavoro, std::size_t posto);
  Esito concludi(Lavoro& lavoro, const Titolo& titolo);

  Result<void> finisciLibri();
  Result<void> riprendiMosse(const Intento& intento, TrashBatch& batch);
  std::vector<std::string> postiDi(const Intento& intento, TrashBatch& batch) const;
  Result<void> riprendiRipristino(const Intento& intento, TrashBatch& batch);
  bool finisci(const Intento::Passo& passo, TrashBatch& batch) const;

  void guardaTutti(Ritorno& ritorno, const std::vector<std::size_t>& quali) const;
  bool rimettibile(Ritorno& ritorno, const Scelto& scelto) const;
  void scegli(Ritorno& ritorno, Scelto scelto) const;
  void scegliInsieme(Ritorno& ritorno, std::vector<Scelto> scelti) const;
  static void restore(Ritorno& ritorno);
  static void rimetti(Ritorno& ritorno, std::span<const Intento::Passo> passi);
  std::string destinazione(const std::string& orig, Result<EntryAttributes> voce,
                           const std::unordered_set<std::string>& promesse) const;
  bool stessoElemento(const std::string& percorso, const TrashPlan& piano) const;

  const AmbienteCestino ambiente_;
  Custode custode_;
  Registro registro_;
  Intenti intenti_;
};

}  // namespace pellak::trash
