#pragma once

#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/Result.h"

namespace pellak::posix {

/// Space and files set aside while there is room, so that on a full disk the books can be kept and
/// something be moved to the Trash: some MiB really allocated, and empty files for where files are
/// what there is no more of. Lies in one folder; given up as a whole. Any thread.
class Riserva {
 public:
  /// Nothing is kept, or given up, before this names the folder.
  void usa(std::string cartella);

  /// Does a write, and once more when it found no room in `dove`, a path on the same volume, and
  /// the reserve could make some. `scrivi` returns a Result and may be called twice.
  template <class Scrivi>
  auto conRiserva(std::string_view dove, Scrivi&& scrivi) {
    auto esito = scrivi();
    if (esito || esito.error().kind != ErrorKind::full || !cedi(dove)) return esito;
    return scrivi();
  }

  /// Makes what is missing, if there is room for far more than that. Failing is no harm.
  void rifornisci();

 private:
  bool cedi(std::string_view dove);

  std::mutex lock_;
  std::string cartella_;
  bool completa_ = false;  ///< seen whole, and not given up since
  bool ceduta_ = false;    ///< what it made room with may not be used up yet
};

}  // namespace pellak::posix
