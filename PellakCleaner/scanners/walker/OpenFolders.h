#pragma once

#include <cstddef>
#include <deque>
#include <memory>
#include <string>

#include "platform/DirectoryLister.h"
#include "scanners/walker/Folder.h"

namespace pellak::walker {

/// One worker's share of the descriptors: folders with work below them stay open, the longest
/// unused one is closed when there are too many and opened again when its turn comes. Belongs to
/// one thread.
class OpenFolders {
 public:
  OpenFolders(DirectoryLister& lister, std::size_t allowance)
      : lister_(lister), allowance_(allowance) {}

  /// Opens the folder `name` of `parent`, or the root `name` when there is no parent. Descriptors
  /// running out in the process make it close what it can spare and try a few times more.
  Result<std::shared_ptr<DirectoryHandle>> open(const FolderRef& parent, const std::string& name);

  /// Counts an open folder that work still waits for.
  void keep(const FolderRef& folder);

 private:
  using Handle = std::shared_ptr<DirectoryHandle>;

  Result<Handle> tryOpen(const FolderRef& parent, const std::string& name);
  Result<Handle> handleOf(const FolderRef& folder);
  void dropAll();

  DirectoryLister& lister_;
  const std::size_t allowance_;
  std::deque<FolderRef> kept_;
};

}  // namespace pellak::walker
