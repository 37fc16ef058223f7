#include <pthread.h>
#include <sys/resource.h>

#include "platform/ThreadPriority.h"

namespace pellak {

void lowerThisThread() {
  static_cast<void>(::pthread_set_qos_class_self_np(QOS_CLASS_BACKGROUND, 0));
  static_cast<void>(::setiopolicy_np(IOPOL_TYPE_DISK, IOPOL_SCOPE_THREAD, IOPOL_THROTTLE));
}

}  // namespace pellak
