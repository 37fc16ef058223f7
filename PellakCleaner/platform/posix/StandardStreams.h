#pragma once

namespace pellak::posix {

/// Opens /dev/null on whichever of the descriptors 0, 1 and 2 is closed, so that no file of ours
/// gets one of these numbers and with it what is written to standard output or error.
void occupyStandardStreams();

}  // namespace pellak::posix
