#include <cerrno>
#include <fcntl.h>

#include "platform/posix/ErrnoError.h"
#include "platform/posix/RoomAhead.h"

namespace pellak::posix {

Result<void> roomAhead(int file, std::int64_t byte) {
  // Some file systems take this back when the file is closed: then it says at least that there was
  // room.
  fstore_t posto{F_ALLOCATEALL, F_PEOFPOSMODE, 0, static_cast<off_t>(byte), 0};
  if (::fcntl(file, F_PREALLOCATE, &posto) == 0 || (errno != ENOSPC && errno != EDQUOT)) return {};
  return errnoError(errno);
}

}  // namespace pellak::posix
