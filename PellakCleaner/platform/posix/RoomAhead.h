#pragma once

#include <cstdint>

#include "platform/Result.h"

namespace pellak::posix {

/// Sets `byte` bytes aside beyond the end of an open file, so that writing them there finds room.
/// The file keeps its size. Success, too, where the file system can't. Errors: full, failed.
Result<void> roomAhead(int file, std::int64_t byte);

}  // namespace pellak::posix
