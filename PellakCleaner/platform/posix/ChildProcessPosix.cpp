#include "platform/posix/ChildProcessPosix.h"

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <poll.h>
#include <sys/wait.h>
#include <utility>
#include <vector>

namespace pellak::posix {

namespace {

constexpr std::size_t kChunk = 65536;  // what a pipe holds by default

ExitStatus decode(int status) {
  if (WIFSIGNALED(status)) return {true, WTERMSIG(status)};
  return {false, WEXITSTATUS(status)};
}

enum class Ready { stream, wake, failed };

// Waits until the stream has something (its end included) or the reader is told to give up,
// which comes first when both are there.
Ready awaitInput(int stream, int wake) {
  pollfd watched[] = {{stream, POLLIN, 0}, {wake, POLLIN, 0}};
  while (::poll(watched, 2, -1) < 0) {
    if (errno != EINTR && errno != EAGAIN) return Ready::failed;
  }
  return watched[1].revents != 0 ? Ready::wake : Ready::stream;
}

}  // namespace

ChildProcessPosix::ChildProcessPosix(pid_t pid, ChildPipes pipes,
                                     std::shared_ptr<ChildReaper> reaper)
    : pid_(pid), reaper_(std::move(reaper)), pipes_(std::move(pipes)) {}

ChildProcessPosix::~ChildProcessPosix() {
  if (!ended()) reaper_->adopt(pid_);
}

ReadEnd ChildProcessPosix::readOutput(std::string& testo) { return readAll(pipes_.output, testo); }

ReadEnd ChildProcessPosix::readError(std::string& testo) { return readAll(pipes_.error, testo); }

ReadEnd ChildProcessPosix::readAll(const Descriptor& stream, std::string& testo) {
  if (!stream) return ReadEnd::failed;
  std::vector<char> chunk(kChunk);
  for (;;) {
    const Ready ready = awaitInput(stream.get(), pipes_.wakeReader.get());
    if (ready == Ready::wake) return ReadEnd::givenUp;
    if (ready == Ready::failed) return ReadEnd::failed;
    const ssize_t got = ::read(stream.get(), chunk.data(), chunk.size());
    if (got == 0) return ReadEnd::endOfFile;
    if (got > 0) {
      testo.append(chunk.data(), static_cast<std::size_t>(got));
    } else if (errno != EINTR) {
      return ReadEnd::failed;
    }
  }
}

void ChildProcessPosix::giveUpReading() {
  const std::lock_guard hold(wakeLock_);
  pipes_.wakeWriter.reset();
}

std::optional<ExitStatus> ChildProcessPosix::ended() {
  const std::lock_guard hold(statusLock_);
  if (status_) return status_;
  int raw = 0;
  pid_t seen = -1;
  do {
    seen = ::waitpid(pid_, &raw, WNOHANG);
  } while (seen < 0 && errno == EINTR);
  if (seen == pid_) status_ = decode(raw);
  if (seen < 0) status_ = ExitStatus{false, -1};
  return status_;
}

ExitStatus ChildProcessPosix::wait() {
  for (;;) {
    if (const auto status = ended()) return *status;
    // Waits without collecting, so that the lock needn't be held meanwhile.
    siginfo_t ignored{};
    ::waitid(P_PID, static_cast<id_t>(pid_), &ignored, WEXITED | WNOWAIT);
  }
}

void ChildProcessPosix::terminate() { send(SIGTERM); }

void ChildProcessPosix::kill() { send(SIGKILL); }

void ChildProcessPosix::send(int signal) {
  const std::lock_guard hold(statusLock_);
  if (!status_) ::kill(pid_, signal);
}

}  // namespace pellak::posix
