#pragma once

#include "platform/Result.h"

namespace pellak::posix {

/// The `Error` for an errno value, as `systemError` makes it. The one place where error numbers
/// are mapped. Thread-safe.
Error errnoError(int number);

}  // namespace pellak::posix
