#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace pellak::native {

struct ProcessMac {
  pid_t pid;
  std::string executable;  ///< absolute, no links on the way
};

/// The processes of this user that run right now, as the kernel lists them. Any thread.
std::vector<ProcessMac> ownProcesses();

}  // namespace pellak::native
