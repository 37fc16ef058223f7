#pragma once

#include "platform/Result.h"

namespace pellak {

/// The `Error` for an error number of the system: its kind, and Italian words for it. The words are
/// empty where the number means nothing that a user could be told. Thread-safe.
Error systemError(int number);

}  // namespace pellak
