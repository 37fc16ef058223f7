#pragma once

#include <string>
#include <vector>

#include "scanners/walker/Walker.h"

namespace pellak::scanners {

/// The rules' roots that are folders now, "~" expanded, in the rules' order and each once. A root
/// that is a symbolic link or not absolute is none.
std::vector<std::string> radiciEsistenti(const walker::Ambiente& ambiente,
                                         const std::vector<std::string>& scritte,
                                         const std::string& home);

}  // namespace pellak::scanners
