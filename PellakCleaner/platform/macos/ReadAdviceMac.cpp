#include <fcntl.h>

#include "platform/posix/ReadAdvice.h"

namespace pellak::posix {

void adviseRead(int file, ReadPlan plan) {
  ::fcntl(file, F_RDAHEAD, plan == ReadPlan::whole ? 1 : 0);
}

}  // namespace pellak::posix
