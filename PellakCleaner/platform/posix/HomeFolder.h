#pragma once

#include <string>

namespace pellak::posix {

/// The home folder of the user the process runs as, by the system's own records; empty when they
/// don't tell. Any thread.
std::string homeFolder();

}  // namespace pellak::posix
