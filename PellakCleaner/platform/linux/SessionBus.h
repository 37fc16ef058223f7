#pragma once

#include <string>

namespace pellak::linux_ {

/// Address of the user's message bus; empty when none runs. Never starts one.
std::string sessionBusAddress();

}  // namespace pellak::linux_
