#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include "platform/posix/SpawnSystem.h"

namespace pellak::posix {

// There is no call that makes the pipe and marks it at once. A child that another thread starts
// in between with our launcher still gets neither end: see closeAllOthers.
int makePipe(int (&ends)[2]) {
  if (::pipe(ends) != 0) return errno;
  for (const int end : ends) {
    if (::fcntl(end, F_SETFD, FD_CLOEXEC) == 0) continue;
    const int number = errno;
    ::close(ends[0]);
    ::close(ends[1]);
    return number;
  }
  return 0;
}

// With this flag only descriptors made by file actions reach the child.
int closeAllOthers(posix_spawn_file_actions_t&, posix_spawnattr_t& attributes) {
  short flags = 0;
  if (const int number = posix_spawnattr_getflags(&attributes, &flags); number != 0) return number;
  return posix_spawnattr_setflags(&attributes,
                                  static_cast<short>(flags | POSIX_SPAWN_CLOEXEC_DEFAULT));
}

}  // namespace pellak::posix
