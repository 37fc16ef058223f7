#pragma once

#include <string>

#include "platform/LoginEntry.h"

namespace pellak::native {

/// The entry that starts the program at login, below XDG_CONFIG_HOME or `home`, as the desktop
/// entry and autostart conventions have it.
LoginEntry autostartEntry(const std::string& executable, const std::string& home);

}  // namespace pellak::native
