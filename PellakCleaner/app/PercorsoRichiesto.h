#pragma once

#include <string>

namespace pellak::app {

/// The path that an argument means, absolute and without "." and "..", relative ones from the
/// current folder, none is the home folder; empty when there is no such path.
std::string percorsoRichiesto(const std::string& argomento, const std::string& home);

}  // namespace pellak::app
