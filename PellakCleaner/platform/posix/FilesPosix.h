#pragma once

#include "platform/Files.h"

namespace pellak::posix {

/// `Files` over the POSIX calls. Stateless; any thread.
class FilesPosix : public Files {
 public:
  Result<std::string> read(std::string_view percorso, std::size_t limite) override;
  Result<void> replace(std::string_view percorso, std::span<const std::string_view> pezzi) override;
  Result<void> appendLine(std::string_view percorso, std::string_view riga) override;
  Result<void> makeFolder(std::string_view percorso) override;
  Result<void> removeOwn(std::string_view percorso) override;
  Result<void> renameOwn(std::string_view da, std::string_view a) override;
  Result<void> readable(std::string_view percorso) override;
  std::string stamp(std::string_view percorso) override;
  bool exists(std::string_view percorso) override;
  Result<std::unique_ptr<FileLock>> lock(std::string_view percorso) override;
  Result<std::unique_ptr<FileLock>> tryLock(std::string_view percorso) override;
};

}  // namespace pellak::posix
