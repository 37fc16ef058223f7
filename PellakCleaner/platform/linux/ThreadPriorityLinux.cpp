#include <linux/ioprio.h>
#include <sched.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "platform/ThreadPriority.h"

namespace pellak {

void lowerThisThread() {
  const sched_param none{};
  static_cast<void>(::sched_setscheduler(0, SCHED_IDLE, &none));
  const int idle = IOPRIO_PRIO_VALUE(IOPRIO_CLASS_IDLE, 0);
  static_cast<void>(::syscall(SYS_ioprio_set, IOPRIO_WHO_PROCESS, 0, idle));
}

}  // namespace pellak
