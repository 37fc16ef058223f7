#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "PellakCore/Store.h"
#include "PellakCore/base/Mutex.h"
#include "platform/FileReader.h"
#include "platform/Files.h"

namespace pellak {
class Json;
class JsonWriter;
}  // namespace pellak

namespace pellak::trash {

/// One item of an operation.
struct Mossa {
  std::string orig;
  std::string trash;      ///< empty when the system did not tell
  bool rip = false;       ///< put back since
  bool superata = false;  ///< a later operation gave its place in the Trash to another item
  /// Items with the same number belong together: none comes back alone. 0: stands alone.
  std::int64_t insieme = 0;
};

/// One operation.
struct Operazione {
  std::string id;
  double ts = 0;  ///< seconds since 1970
  std::string azione;
  std::int64_t tot = 0;  ///< bytes, as the scan measured them
  std::string nota;
  std::vector<Mossa> items;
};

/// As the log keeps it and the page lists it.
void scriviOperazione(JsonWriter& uscita, const Operazione& operazione);

/// The operations log: one JSON object a line, only ever appended to. A restore appends a line of
/// its own ("ripristino" names the operation, "indici" its items), which readers lay over the
/// record. Lines that are no JSON, a last one torn by a crash among them, are skipped and kept.
///
/// What was read stays in memory, so that only what was appended since is read again. Any thread;
/// whoever appends holds the lock of the Trash operations.
class Registro {
 public:
  Registro(Files& files, FileReader& reader, const Store& store)
      : files_(files), reader_(reader), percorso_(store.registro()) {}

  /// Whether the log is one, and a record of `byte` bytes appended: what must be known before
  /// anything moves. Errors: full, denied, readOnly, invalid (no regular file, or one far too
  /// large), failed (a link among them).
  Result<void> pronto(std::size_t byte);

  /// Reads what is new in it. What `cerca` finds none of may stand in a log that could not be read:
  /// this tells. A missing one is success. Errors: as above.
  Result<void> leggi();

  /// On disk when it returns. Errors: denied, full, readOnly, failed.
  Result<void> logOperation(const Operazione& operazione);
  Result<void> logRestore(std::string_view operazione, const std::vector<std::size_t>& indici,
                          double ts, std::string_view nota = {});

  std::optional<Operazione> cerca(std::string_view id);
  /// All operations, newest first. `visita` must not call the log; it is called for none when the
  /// log can't be read. Errors: as of `leggi`.
  Result<void> visita(const std::function<void(const Operazione&)>& visita);

 private:
  struct Aperto {
    std::unique_ptr<OpenFile> file;
    FileMark stato;
  };

  Result<void> scrivi(std::string riga);
  Result<Aperto> apri() const;
  bool finisceACapo() const;
  Error delFile(Error errore) const;
  Result<void> aggiorna() PELLAK_REQUIRES(lock_);
  void leggiRighe(std::string_view testo) PELLAK_REQUIRES(lock_);
  bool leggiRiga(std::string_view riga) PELLAK_REQUIRES(lock_);
  void leggiRipristino(Json riga) PELLAK_REQUIRES(lock_);

  Files& files_;
  FileReader& reader_;
  const std::string percorso_;

  Mutex lock_;
  std::uint64_t dev_ PELLAK_GUARDED_BY(lock_) = 0;
  std::uint64_t ino_ PELLAK_GUARDED_BY(lock_) = 0;
  std::int64_t letti_ PELLAK_GUARDED_BY(lock_) = 0;  ///< bytes of the file that are in memory
  std::vector<Operazione> operazioni_ PELLAK_GUARDED_BY(lock_);
  std::unordered_map<std::string, std::size_t> posti_ PELLAK_GUARDED_BY(lock_);
};

/// A fresh random identifier: the first 12 characters of a UUID.
std::string nuovoId();

}  // namespace pellak::trash
