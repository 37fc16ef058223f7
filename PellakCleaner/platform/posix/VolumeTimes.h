#pragma once

namespace pellak::posix {

/// Whether the volume of an open file keeps lasting file numbers and true times of status changes.
bool keepsChangeTimes(int file);

}  // namespace pellak::posix
