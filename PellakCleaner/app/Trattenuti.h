#pragma once

#include <string>
#include <vector>

#include "PellakCore/Finding.h"

namespace pellak::app {

/// Prints what scans held back and why, each place once; nothing when there is nothing.
void stampaTrattenuti(const std::vector<Trattenuto>& trattenuti, const std::string& home);

}  // namespace pellak::app
