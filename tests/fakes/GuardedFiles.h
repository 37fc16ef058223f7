#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>

#include "platform/posix/FilesPosix.h"

namespace pellak::fakes {

/// The real files with refusals added, which a test that runs with all rights can't get from
/// the system. Set it up before other threads use it.
class GuardedFiles : public posix::FilesPosix {
 public:
  Result<void> replace(std::string_view percorso,
                       std::span<const std::string_view> pezzi) override {
    if (soloLettura) return Error{ErrorKind::readOnly, 0, "read-only"};
    if (primaDiScrivere) primaDiScrivere(percorso);
    if (scritture && (*scritture)-- <= 0) return Error{ErrorKind::full, 0, "full", {}};
    return FilesPosix::replace(percorso, pezzi);
  }

  Result<void> removeOwn(std::string_view percorso) override {
    if (soloLettura) return Error{ErrorKind::readOnly, 0, "read-only"};
    return FilesPosix::removeOwn(percorso);
  }

  Result<std::string> read(std::string_view percorso, std::size_t limite) override {
    if (nonLetto) return *nonLetto;
    return FilesPosix::read(percorso, limite);
  }

  Result<void> readable(std::string_view percorso) override {
    if (negati.contains(percorso)) return Error{ErrorKind::denied, 0, "denied"};
    return FilesPosix::readable(percorso);
  }

  std::function<void(std::string_view)> primaDiScrivere;
  bool soloLettura = false;       ///< nothing can be written or taken away
  std::optional<int> scritture;   ///< how many more files can be replaced
  std::optional<Error> nonLetto;  ///< why nothing can be read just now
  std::set<std::string, std::less<>> negati;
};

}  // namespace pellak::fakes
