#pragma once

#include <spawn.h>

namespace pellak::posix {

/// The two steps of starting a child that each system has its own way for. Both return 0 or an
/// error number.

/// A pipe whose ends are both closed when a program is started: `ends[0]` reads, `ends[1]` writes.
int makePipe(int (&ends)[2]);

/// Has the child begin without any descriptor above standard error, those that other code opened
/// without close-on-exec included. The other actions and flags must be there already.
int closeAllOthers(posix_spawn_file_actions_t& actions, posix_spawnattr_t& attributes);

}  // namespace pellak::posix
