#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

#include "platform/posix/ErrnoError.h"
#include "platform/posix/RoomAhead.h"

namespace pellak::posix {

Result<void> roomAhead(int file, std::int64_t byte) {
  struct stat info {};
  if (::fstat(file, &info) != 0) return errnoError(errno);
  while (::fallocate(file, FALLOC_FL_KEEP_SIZE, info.st_size, byte) != 0) {
    if (errno == EINTR) continue;
    if (errno == ENOSPC || errno == EDQUOT || errno == EIO) return errnoError(errno);
    return {};
  }
  return {};
}

}  // namespace pellak::posix
