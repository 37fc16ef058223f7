#pragma once

#include <cstdint>
#include <linux/fiemap.h>
#include <span>

#include "platform/DirectoryLister.h"
#include "platform/Result.h"

/// The room that files of one volume hold together: copies that were never written, snapshots.
namespace pellak::native {

/// Whether the volume of an open folder is of a kind whose files can share extents.
bool sharesExtents(int folder);

/// Bytes of these extents that belong to one file alone and surely take room: a shared extent
/// has none, one that lies inside a record neither; of a compressed one, whose room the system
/// doesn't tell, no more than a block is sure.
std::int64_t ownBytes(std::span<const fiemap_extent> extents);

/// A regular file's own room and its hard links. Errors: missing, denied, failed (no regular file
/// among them).
Result<OwnSpace> ownExtents(int folder, const char* name);

}  // namespace pellak::native
