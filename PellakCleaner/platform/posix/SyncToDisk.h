#pragma once

namespace pellak::posix {

/// fsync that returns when the disk itself has what was written to an open file or folder, its own
/// memory included. 0, or -1 with errno set.
int syncToDisk(int file);

}  // namespace pellak::posix
