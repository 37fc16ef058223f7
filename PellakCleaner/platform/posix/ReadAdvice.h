#pragma once

#include "platform/FileReader.h"

namespace pellak::posix {

/// Tells the system how an open file is going to be read. Without effect where it has no ear.
void adviseRead(int file, ReadPlan plan);

}  // namespace pellak::posix
