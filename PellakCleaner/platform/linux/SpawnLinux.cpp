#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

#include "platform/posix/SpawnSystem.h"

namespace pellak::posix {

int makePipe(int (&ends)[2]) { return ::pipe2(ends, O_CLOEXEC) == 0 ? 0 : errno; }

int closeAllOthers(posix_spawn_file_actions_t& actions, posix_spawnattr_t&) {
  return posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
}

}  // namespace pellak::posix
