#include <malloc.h>

#include "platform/LargeBlocks.h"

namespace pellak {

void returnLargeBlocks() {
  // Left alone, the limit rises with the first large block that is freed, and those that follow
  // are cut out of a heap that keeps what was freed below its top.
  static_cast<void>(::mallopt(M_MMAP_THRESHOLD, 256 * 1024));
}

}  // namespace pellak
