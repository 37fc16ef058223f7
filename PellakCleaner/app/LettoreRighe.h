#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace pellak::app {

/// Lines from a file descriptor, which stays the caller's. A line longer than the limit is
/// skipped whole. One thread.
class LettoreRighe {
 public:
  LettoreRighe(int descriptor, std::size_t massimoByte);

  enum class Esito { riga, fine, sospesa };

  /// Waits at most `millisecondi` for the next complete line, which `riga` then holds without its
  /// newline: `sospesa` when none came in that time, `fine` at the end of the input. A last line
  /// without newline counts.
  Esito prossima(std::string& riga, int millisecondi);

 private:
  std::optional<std::string> daRaccolto();
  bool leggi();

  const int descriptor_;
  const std::size_t massimoByte_;
  std::string raccolto_;
  std::size_t cercatoFino_ = 0;
  bool saltando_ = false;
  bool finito_ = false;
};

}  // namespace pellak::app
