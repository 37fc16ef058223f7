#pragma once

#include <string>

namespace pellak::native {

/// Address of the user's message bus; empty when none runs. Never starts one.
std::string sessionBusAddress();

}  // namespace pellak::native
