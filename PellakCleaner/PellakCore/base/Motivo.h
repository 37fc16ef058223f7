#pragma once

#include <string>

#include "platform/Result.h"

namespace pellak {

/// What somebody with a full disk can do.
constexpr const char* kComeFarePosto =
    "libera a mano un po' di posto su quel disco, per esempio svuotando il Cestino, e riprova";

/// Why something failed, for a user: an Italian fragment by kind, with the error's words, or
/// its number, behind it where they tell more.
std::string motivo(const Error& errore);

/// The same with the file it is about before it, and behind it what can be done.
std::string motivoCompleto(const Error& errore);

}  // namespace pellak
