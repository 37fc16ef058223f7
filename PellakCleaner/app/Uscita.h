#pragma once

#include <string_view>

#include "PellakCore/base/Rope.h"

namespace pellak::app {

/// Writes to standard output.
void stampa(std::string_view testo);
void stampa(const Rope& testo);

/// Hands over what is buffered.
void consegna();

/// Whether a write has failed, for instance because the reader went away: nothing that follows
/// arrives.
bool uscitaPersa();

/// Hands over what is still buffered. The exit status of a command that has printed its results:
/// 0, or 1 with a line on standard error when they could not be written (a full disk; a reader
/// that went away is no error).
int chiudiUscita();

}  // namespace pellak::app
