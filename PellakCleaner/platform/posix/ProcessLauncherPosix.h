#pragma once

#include <memory>

#include "platform/ProcessLauncher.h"
#include "platform/posix/ChildReaper.h"

namespace pellak::posix {

/// Starts programs by posix_spawn, which is safe in a process with threads.
///
/// A process that ignores SIGCHLD (it may have been started like that) never learns how its
/// children end: making the launcher sets that one signal back to its default.
class ProcessLauncherPosix final : public ProcessLauncher {
 public:
  ProcessLauncherPosix();
  Result<std::unique_ptr<ChildProcess>> start(const LaunchRequest& request) override;

 private:
  const std::shared_ptr<ChildReaper> reaper_;
};

}  // namespace pellak::posix
