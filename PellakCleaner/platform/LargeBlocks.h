#pragma once

namespace pellak {

/// Has every large block of memory (256 KiB and more) go back to the system as soon as it is
/// freed, so that a program that stays keeps nothing of a large scan's. To be called before the
/// first thread starts.
void returnLargeBlocks();

}  // namespace pellak
