#pragma once

#include <optional>
#include <string>

namespace pellak::native {

/// The name of a program that works in a file or folder: has it open, or as its working or root
/// folder. Nothing when there is none, or none that this user may see. Reads all of /proc once.
std::optional<std::string> programHolding(const std::string& percorso);

}  // namespace pellak::native
