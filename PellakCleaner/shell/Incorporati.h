#pragma once

#include <optional>
#include <string>

#include "platform/ToolFamily.h"

/// What the build has sealed into the executable. Any thread; opened anew by every call.
namespace pellak::shell::incorporati {

/// The page; nothing when its seal is broken.
std::optional<std::string> pagina();

/// The rules document that belongs to a family of tools.
std::optional<std::string> regole(FamigliaStrumenti famiglia);

}  // namespace pellak::shell::incorporati
