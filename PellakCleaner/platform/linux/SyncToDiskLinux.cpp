#include <unistd.h>

#include "platform/posix/SyncToDisk.h"

namespace pellak::posix {

int syncToDisk(int file) { return ::fsync(file); }

}  // namespace pellak::posix
