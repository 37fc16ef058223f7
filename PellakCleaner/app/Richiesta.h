#pragma once

#include <string>
#include <string_view>

#include "PellakCore/base/Json.h"

namespace pellak::app {

class Applicazione;

/// One request through the router, with its reply read: the way of every command that changes
/// something, so that what was found is saved after it. `corpo` is the text of a JSON object.
JsonDocument richiedi(Applicazione& applicazione, std::string_view rotta, const std::string& corpo);

/// Why something was refused or failed, in the words to show: the true reason where one is known,
/// otherwise "err"; empty when neither is there.
std::string perche(Json fallito);

}  // namespace pellak::app
