#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include "platform/posix/SyncToDisk.h"

namespace pellak::posix {

/// Here fsync hands over to the disk and does not wait for it. File systems that can't do more than
/// that, most of them on the network, say so.
int syncToDisk(int file) {
  if (::fcntl(file, F_FULLFSYNC) == 0) return 0;
  return errno == ENOTSUP || errno == ENOTTY || errno == EINVAL ? ::fsync(file) : -1;
}

}  // namespace pellak::posix
