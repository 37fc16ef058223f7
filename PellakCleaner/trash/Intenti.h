#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "PellakCore/Store.h"
#include "platform/Files.h"
#include "platform/TrashCan.h"
#include "trash/Registro.h"

namespace pellak::trash {

/// What an operation is about to do, on disk before its first move and gone after its record: all
/// that is needed to finish the books when the process dies in between.
struct Intento {
  struct Passo {
    TrashPlan piano;
    std::string destinazione;  ///< of a way back
    std::size_t indice = 0;    ///< of the item in the operation that is restored
    std::int64_t insieme = 0;  ///< as in the record; steps of one set follow each other
  };
  std::string ripristino;  ///< the operation that is restored; empty for a move to the Trash
  Operazione operazione;   ///< the record to be; `items` stays empty
  std::vector<Passo> passi;
};

/// The intent file, one for a home folder. Written and taken away under the lock of the Trash
/// operations.
class Intenti {
 public:
  Intenti(Files& files, const Store& store) : files_(files), percorso_(store.intento()) {}

  /// Replaces the file; on disk when it returns, with that many bytes. Errors: as for
  /// Files::replace.
  Result<std::size_t> scrivi(const Intento& intento);
  Result<void> togli() { return files_.removeOwn(percorso_); }
  bool presente() const { return files_.exists(percorso_); }
  /// What a process that ended too early left behind; nothing when the file is not there. Errors:
  /// invalid (it is no intent), denied, failed.
  Result<std::optional<Intento>> leggi() const;
  /// Puts a file that is no intent aside, so that it is in nobody's way.
  Result<void> accantona() { return files_.setAside(percorso_); }

 private:
  Files& files_;
  const std::string percorso_;
};

}  // namespace pellak::trash
