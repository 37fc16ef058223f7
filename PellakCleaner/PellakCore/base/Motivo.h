#pragma once

#include <string>

#include "platform/Result.h"

namespace pellak {

/// Why something failed, for a user: an Italian fragment by kind, with the system's own words
/// behind it where they tell more.
std::string motivo(const Error& errore);

}  // namespace pellak
