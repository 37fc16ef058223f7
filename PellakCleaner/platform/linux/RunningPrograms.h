#pragma once

#include <string>
#include <vector>

#include "platform/linux/DesktopEntries.h"

namespace pellak::native {

/// What /proc tells about one process.
struct RunningProgram {
  std::string folder;                  ///< its folder below /proc
  std::string program;                 ///< file it runs; empty when the system does not tell
  std::vector<std::string> arguments;  ///< its own name first
  std::string groups;                  ///< text of its "cgroup" file
  int pid = 0;
};

/// The processes of this user, read one after the other: a snapshot only by and large.
std::vector<RunningProgram> runningPrograms();

/// Whether a process belongs to the application: started for it by the desktop, in its sandbox,
/// or running its program. Processes that an interpreter runs are told by their script.
bool belongsTo(const RunningProgram& process, const DesktopEntry& entry);

}  // namespace pellak::native
