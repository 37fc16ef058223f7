#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <sys/types.h>

#include "platform/ProcessLauncher.h"
#include "platform/posix/ChildReaper.h"
#include "platform/posix/Descriptor.h"

namespace pellak::posix {

/// Our ends of a child's pipes. An output or error that is not read is an empty descriptor.
/// Closing `wakeWriter` wakes whoever reads through `wakeReader`.
struct ChildPipes {
  Descriptor output;
  Descriptor error;
  Descriptor wakeReader;
  Descriptor wakeWriter;
};

/// A child made by posix_spawn; see `ChildProcess`.
class ChildProcessPosix final : public ChildProcess {
 public:
  ChildProcessPosix(pid_t pid, ChildPipes pipes, std::shared_ptr<ChildReaper> reaper);
  ~ChildProcessPosix() override;

  ReadEnd readOutput(std::string& testo) override;
  ReadEnd readError(std::string& testo) override;
  void giveUpReading() override;
  std::optional<ExitStatus> ended() override;
  ExitStatus wait() override;
  void terminate() override;
  void kill() override;

 private:
  ReadEnd readAll(const Descriptor& stream, std::string& testo);
  void send(int signal);

  const pid_t pid_;
  const std::shared_ptr<ChildReaper> reaper_;
  ChildPipes pipes_;  // wakeWriter: under wakeLock_; the rest stays as it is
  std::mutex wakeLock_;
  // Held while the child is collected and while it is signalled: a signal can't go to a process
  // that got the number afterwards.
  std::mutex statusLock_;
  std::optional<ExitStatus> status_;
};

}  // namespace pellak::posix
