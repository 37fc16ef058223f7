#include <fcntl.h>

#include "platform/posix/ReadAdvice.h"

namespace pellak::posix {

void adviseRead(int file, ReadPlan plan) {
  ::posix_fadvise(file, 0, 0, plan == ReadPlan::whole ? POSIX_FADV_SEQUENTIAL : POSIX_FADV_RANDOM);
}

}  // namespace pellak::posix
