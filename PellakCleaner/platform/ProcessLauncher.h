#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/Result.h"

namespace pellak {

/// What of a child's output its parent reads. What is not read goes nowhere.
enum class ChildStreams {
  merged,    ///< output and error interleaved in one pipe, read as output
  separate,  ///< one pipe each
  errorOnly  ///< only standard error
};

/// One program to start. No shell takes part.
struct LaunchRequest {
  std::string percorso;                ///< absolute; bytes
  std::vector<std::string> argomenti;  ///< without the program itself
  ChildStreams flussi = ChildStreams::merged;
  /// Added to the inherited environment, or put in the place of a variable of that name.
  std::vector<std::pair<std::string, std::string>> ambiente;
};

/// How a child ended.
struct ExitStatus {
  bool signalled = false;
  /// The exit status, or the signal that ended it. -1 (and not signalled) when the system no
  /// longer knows, because something else in this process collected the child.
  int number = 0;

  bool operator==(const ExitStatus&) const = default;
};

/// How a read of a child's stream came to its end.
enum class ReadEnd {
  endOfFile,  ///< every holder of the stream closed it; the text is whole
  givenUp,    ///< giveUpReading() was called
  failed      ///< the system refused to go on, or this stream is not read (see ChildStreams)
};

/// A started child. The process identifier stays its own until this object has collected it, so
/// no signal ever reaches a stranger.
///
/// Destroying the object closes the pipes and collects a child that has ended. One that still
/// runs is neither stopped nor waited for: it goes on (writes to its closed pipes fail) and the
/// launcher collects it when it ends.
///
/// Threads: any, concurrently; but one reader per stream, and no call may still be running when
/// the object is destroyed.
class ChildProcess {
 public:
  virtual ~ChildProcess() = default;

  /// Appends the stream to `testo` as it arrives and returns at its end. Blocks. The end comes
  /// when the child and everything that inherited the stream from it have closed it.
  virtual ReadEnd readOutput(std::string& testo) = 0;
  virtual ReadEnd readError(std::string& testo) = 0;

  /// Makes running and later reads return `givenUp` without waiting for more.
  virtual void giveUpReading() = 0;

  /// How the child ended, if it has; nullopt while it runs. Does not wait.
  virtual std::optional<ExitStatus> ended() = 0;

  /// Waits until the child has ended, however long that takes.
  virtual ExitStatus wait() = 0;

  /// Asks the child to end (SIGTERM), or ends it (SIGKILL). The signal goes to the child alone,
  /// not to what it started. Nothing happens when it has ended already, or when the system does
  /// not let us because it runs with more rights than ours.
  virtual void terminate() = 0;
  virtual void kill() = 0;
};

/// Starts programs. A child gets its three standard descriptors and nothing else of ours: input
/// is empty, output and error are as `flussi` says. Signals are unblocked and have their default
/// effect in it; working directory and environment are inherited.
///
/// Lives as long as the process: children whose objects went away early are collected by it.
/// Threads: any, concurrently.
class ProcessLauncher {
 public:
  virtual ~ProcessLauncher() = default;

  /// Errors: invalid (path not absolute, a NUL or, in a variable's name, a `=` in the request),
  /// missing, denied (not executable, or a folder), failed (no more descriptors or processes, not
  /// a program, arguments too long).
  virtual Result<std::unique_ptr<ChildProcess>> start(const LaunchRequest& request) = 0;
};

}  // namespace pellak
