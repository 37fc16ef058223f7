#pragma once

#include "platform/DirectoryLister.h"

namespace pellak::native {

/// Folders by getattrlistbulk, which gives names and attributes at once; single records by
/// fstatat. File systems that answer the bulk call with nothing are read by name.
class DirectoryListerMac final : public DirectoryLister {
 public:
  Result<std::shared_ptr<DirectoryHandle>> open(std::string_view percorso) override;
  Result<EntryAttributes> attributes(std::string_view percorso) override;
  Result<std::string> resolve(std::string_view percorso) override;
  bool emptyIsCertain() const override { return false; }
  std::size_t descriptorBudget() const override;
};

}  // namespace pellak::native
