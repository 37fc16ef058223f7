#pragma once

#include <string_view>

#include "app/Interruzione.h"

namespace pellak::app {

enum class Assenso { si, no, interrotto };

/// Whether somebody is there to answer: standard input and standard error are a terminal.
bool qualcunoAlTerminale();

/// Puts a question on standard error and waits for one line. Only "s", "si" and "sì" are a yes, in
/// whatever case; the end of input is a no. What was typed before the question does not count.
Assenso chiediConferma(std::string_view domanda, const Interruzione& interruzione);

}  // namespace pellak::app
