#pragma once

#include "platform/Result.h"

namespace pellak::posix {

/// The `Error` for an errno value: kind from the number, text from the system. The one place
/// where error numbers are mapped. Thread-safe.
Error errnoError(int number);

}  // namespace pellak::posix
