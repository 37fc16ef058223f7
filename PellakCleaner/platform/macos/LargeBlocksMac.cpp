#include "platform/LargeBlocks.h"

namespace pellak {

// The system's allocator maps large blocks by themselves.
void returnLargeBlocks() {}

}  // namespace pellak
