#include "platform/posix/ProcessLauncherPosix.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <string_view>
#include <unistd.h>
#include <utility>

#include "platform/posix/ChildProcessPosix.h"
#include "platform/posix/ErrnoError.h"
#include "platform/posix/SpawnSystem.h"

extern char** environ;

namespace pellak::posix {

namespace {

bool holdsNul(std::string_view testo) { return testo.find('\0') != std::string_view::npos; }

bool canBeMeant(const LaunchRequest& request) {
  if (!request.percorso.starts_with('/') || holdsNul(request.percorso)) return false;
  if (std::any_of(request.argomenti.begin(), request.argomenti.end(), holdsNul)) return false;
  return std::all_of(request.ambiente.begin(), request.ambiente.end(), [](const auto& variable) {
    const auto& [name, value] = variable;
    return !name.empty() && !holdsNul(name) && name.find('=') == std::string::npos &&
           !holdsNul(value);
  });
}

/// The pointers exec wants, over texts kept elsewhere.
class ArgumentVector {
 public:
  // exec takes pointers to writable text for reasons of age; it doesn't write.
  void add(const char* text) { pointers_.push_back(const_cast<char*>(text)); }
  char** finish() {
    pointers_.push_back(nullptr);
    return pointers_.data();
  }

 private:
  std::vector<char*> pointers_;
};

/// The inherited environment with the request's variables over it.
class Environment {
 public:
  explicit Environment(const LaunchRequest& request) {
    added_.reserve(request.ambiente.size());
    for (const auto& [name, value] : request.ambiente) {
      added_.push_back(name);
      added_.back().append("=").append(value);
    }
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
      const std::string_view text(*entry);
      const std::string_view name = text.substr(0, text.find('='));
      const bool replaced =
          std::any_of(request.ambiente.begin(), request.ambiente.end(),
                      [name](const auto& variable) { return variable.first == name; });
      if (!replaced) pointers_.add(*entry);
    }
    for (const std::string& text : added_) pointers_.add(text.c_str());
  }

  char** finish() { return pointers_.finish(); }

 private:
  std::vector<std::string> added_;
  ArgumentVector pointers_;
};

/// posix_spawn's two records, with the first error of building them kept.
class SpawnPlan {
 public:
  SpawnPlan() {
    note(posix_spawn_file_actions_init(&actions_));
    note(posix_spawnattr_init(&attributes_));
  }
  ~SpawnPlan() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;

  void connect(int standard, const Descriptor& end) {
    if (end) {
      note(posix_spawn_file_actions_adddup2(&actions_, end.get(), standard));
    } else {
      note(posix_spawn_file_actions_addopen(&actions_, standard, "/dev/null",
                                            standard == STDIN_FILENO ? O_RDONLY : O_WRONLY, 0));
    }
  }

  void defaultSignals() {
    sigset_t every;
    sigset_t none;
    sigfillset(&every);
    sigemptyset(&none);
    note(posix_spawnattr_setsigdefault(&attributes_, &every));
    note(posix_spawnattr_setsigmask(&attributes_, &none));
    note(posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK));
  }

  int spawn(pid_t& pid, const LaunchRequest& request) {
    note(closeAllOthers(actions_, attributes_));
    if (failure_ != 0) return failure_;
    ArgumentVector arguments;
    arguments.add(request.percorso.c_str());
    for (const std::string& argument : request.argomenti) arguments.add(argument.c_str());
    Environment environment(request);
    return posix_spawn(&pid, request.percorso.c_str(), &actions_, &attributes_, arguments.finish(),
                       environment.finish());
  }

 private:
  void note(int number) {
    if (failure_ == 0) failure_ = number;
  }

  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
  int failure_ = 0;
};

// A process started without standard descriptors gets their numbers for its pipes. What it prints
// would then go down a pipe of ours, and the child's own streams could overwrite one another.
int liftAboveStandard(Descriptor& end) {
  if (end.get() > STDERR_FILENO) return 0;
  const int lifted = ::fcntl(end.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  if (lifted < 0) return errno;
  end = Descriptor(lifted);
  return 0;
}

int openPipe(Descriptor& reader, Descriptor& writer) {
  int ends[2] = {-1, -1};
  if (const int number = makePipe(ends); number != 0) return number;
  reader = Descriptor(ends[0]);
  writer = Descriptor(ends[1]);
  if (const int number = liftAboveStandard(reader); number != 0) return number;
  return liftAboveStandard(writer);
}

/// The ends that become the child's own; ours are closed once it runs.
struct ChildEnds {
  Descriptor output;
  Descriptor error;
};

int openPipes(ChildStreams flussi, ChildPipes& ours, ChildEnds& childs) {
  int number = openPipe(ours.wakeReader, ours.wakeWriter);
  if (number == 0 && flussi != ChildStreams::errorOnly) {
    number = openPipe(ours.output, childs.output);
  }
  if (number == 0 && flussi != ChildStreams::merged) number = openPipe(ours.error, childs.error);
  return number;
}

void makeChildrenCollectable() {
  struct sigaction present {};
  if (::sigaction(SIGCHLD, nullptr, &present) != 0) return;
  if (present.sa_handler != SIG_IGN && (present.sa_flags & SA_NOCLDWAIT) == 0) return;
  struct sigaction usual {};
  usual.sa_handler = SIG_DFL;
  ::sigaction(SIGCHLD, &usual, nullptr);
}

}  // namespace

ProcessLauncherPosix::ProcessLauncherPosix() : reaper_(std::make_shared<ChildReaper>()) {
  makeChildrenCollectable();
}

Result<std::unique_ptr<ChildProcess>> ProcessLauncherPosix::start(const LaunchRequest& request) {
  if (!canBeMeant(request)) return errnoError(EINVAL);
  ChildPipes ours;
  ChildEnds childs;
  if (const int number = openPipes(request.flussi, ours, childs); number != 0) {
    return errnoError(number);
  }
  SpawnPlan plan;
  plan.defaultSignals();
  plan.connect(STDIN_FILENO, Descriptor());
  plan.connect(STDOUT_FILENO, childs.output);
  plan.connect(STDERR_FILENO,
               request.flussi == ChildStreams::merged ? childs.output : childs.error);
  pid_t pid = 0;
  if (const int number = plan.spawn(pid, request); number != 0) return errnoError(number);
  return std::unique_ptr<ChildProcess>(
      std::make_unique<ChildProcessPosix>(pid, std::move(ours), reaper_));
}

}  // namespace pellak::posix
