#pragma once

#include "platform/DirectoryLister.h"

namespace pellak::native {

/// Folders by getdents64, records by statx relative to the open folder.
class DirectoryListerLinux final : public DirectoryLister {
 public:
  Result<std::shared_ptr<DirectoryHandle>> open(std::string_view percorso) override;
  Result<EntryAttributes> attributes(std::string_view percorso) override;
  Result<std::string> resolve(std::string_view percorso) override;
  bool emptyIsCertain() const override { return true; }
  std::size_t descriptorBudget() const override;
};

}  // namespace pellak::native
