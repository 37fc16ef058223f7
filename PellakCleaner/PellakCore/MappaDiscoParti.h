#pragma once

#include <algorithm>
#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "PellakCore/MappaDisco.h"
#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/Guarded.h"
#include "scanners/walker/FolderSizes.h"

/// What the parts of the map share among themselves.
namespace pellak {

/// One reading of a folder, cut down to what a map can need.
struct MappaDisco::Elenco {
  std::vector<VoceMappa> voci;  ///< all folders and the largest files, in listing order
  std::int64_t totFile = 0;     ///< of all files
  std::size_t figli = 0;
  std::unordered_set<std::string> negati;  ///< paths of children whose record was refused
};

/// A measuring job.
struct MappaDisco::Lavoro {
  std::string percorso;
  MappaPtr finita;       ///< set when there is nothing to measure, only the second level to look at
  bool livelli = false;  ///< the second level was asked for; with the lock held
  std::shared_ptr<const Elenco> elenco;
  std::vector<std::string> nomi;      ///< of the child folders to measure
  std::vector<std::string> percorsi;  ///< the same in full
  /// The sizes were forgotten meanwhile. Set and, by who publishes, read with the lock held.
  std::atomic<bool> superato{false};
  Guarded<std::unordered_set<std::string>> negati;
};

/// What a finished job knows of the levels below its folder.
struct MappaDisco::Albero {
  std::string percorso;
  walker::FolderSizes cartelle;
  std::unordered_set<std::string> negati;
  std::vector<std::string> dimenticate;  ///< folders it no longer speaks for

  bool parlaDi(std::string_view cartella) const {
    return cartella != percorso && dentroCartella(cartella, percorso) &&
           std::none_of(dimenticate.begin(), dimenticate.end(),
                        [&](const std::string& d) { return dentroCartella(cartella, d); });
  }
};

}  // namespace pellak
