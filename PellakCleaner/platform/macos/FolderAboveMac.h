#pragma once

#include <string>
#include <string_view>

#include "platform/Result.h"
#include "platform/posix/Descriptor.h"

namespace pellak::native {

/// The folder that holds an item, and the item's name in it.
struct FolderAbove {
  posix::Descriptor folder;
  std::string name;
};

/// Opens the folder above an absolute path. No symbolic link is passed on the way; only what leads
/// to `home`, an absolute path, may hold some. With `make`, folders that are missing are made.
/// Errors: invalid (a link on the way, no absolute path, no name at its end), missing, denied,
/// failed.
Result<FolderAbove> openFolderAbove(std::string_view percorso, const std::string& home,
                                    bool make = false);

/// What is said of a move that would leave the volume.
Error otherVolume();

/// Renames within a volume without ever replacing; a volume that can't promise that itself is asked
/// first. Errors: exists, failed (another volume), those of the system.
Result<void> renameExclusively(const FolderAbove& da, const FolderAbove& a);

}  // namespace pellak::native
