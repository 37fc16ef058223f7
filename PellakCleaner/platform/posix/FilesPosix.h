#pragma once

#include "platform/Files.h"
#include "platform/posix/Riserva.h"

namespace pellak::posix {

/// `Files` over the POSIX calls. Any thread.
class FilesPosix : public Files {
 public:
  /// `riserva` outlives it; without one a full disk is full.
  explicit FilesPosix(Riserva* riserva = nullptr) : riserva_(riserva) {}

  Result<std::string> read(std::string_view percorso, std::size_t limite) override;
  Result<std::string> readToEnd(std::string_view percorso, std::size_t massimo) override;
  Result<void> replace(std::string_view percorso, std::span<const std::string_view> pezzi) override;
  Result<void> appendLine(std::string_view percorso, std::string_view riga) override;
  Result<void> makeFolder(std::string_view percorso) override;
  Result<void> appendable(std::string_view percorso, std::size_t byte) override;
  Result<void> removeOwn(std::string_view percorso) override;
  Result<void> setAside(std::string_view percorso) override;
  Result<void> readable(std::string_view percorso) override;
  std::string stamp(std::string_view percorso) override;
  bool exists(std::string_view percorso) override;
  Result<std::unique_ptr<FileLock>> lock(std::string_view percorso) override;
  Result<std::unique_ptr<FileLock>> tryLock(std::string_view percorso) override;

 private:
  template <class Scrivi>
  auto conRiserva(std::string_view percorso, Scrivi&& scrivi);

  Riserva* const riserva_;
};

}  // namespace pellak::posix
