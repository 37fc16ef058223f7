// The program that ProcessLauncherTest starts. Its first argument says what it does.
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

int reportArguments(int count, char** arguments) {
  for (int i = 0; i < count; ++i) std::printf("[%s]", arguments[i]);
  return 0;
}

int reportEnvironment(const char* name) {
  const char* value = std::getenv(name);
  std::printf("%s", value == nullptr ? "(unset)" : value);
  return 0;
}

// Every descriptor that is open, then whether standard input is empty.
int reportDescriptors() {
  for (int number = 0; number < 4096; ++number) {
    if (::fcntl(number, F_GETFD) >= 0) std::printf("%d ", number);
  }
  char byte = 0;
  std::printf("stdin:%s", ::read(STDIN_FILENO, &byte, 1) == 0 ? "empty" : "other");
  return 0;
}

// The signals that are blocked, or ignored.
int reportSignals() {
  sigset_t blocked;
  ::sigprocmask(SIG_BLOCK, nullptr, &blocked);
  for (int number = 1; number < 32; ++number) {
    struct sigaction action {};
    ::sigaction(number, nullptr, &action);
    if (sigismember(&blocked, number) == 1) std::printf("blocked:%d ", number);
    if (action.sa_handler == SIG_IGN) std::printf("ignored:%d ", number);
  }
  std::printf("done");
  return 0;
}

void writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = ::write(descriptor, text.data(), text.size());
    if (written > 0) text.remove_prefix(static_cast<std::size_t>(written));
    if (written < 0 && errno != EINTR) std::_Exit(9);
  }
}

int flood(std::size_t mebibytes) {
  const std::string output(1 << 20, 'o');
  const std::string error(1 << 20, 'e');
  for (std::size_t i = 0; i < mebibytes; ++i) {
    writeAll(STDOUT_FILENO, output);
    writeAll(STDERR_FILENO, error);
  }
  return 0;
}

// Closes its streams once only SIGKILL can end it.
int stubborn() {
  ::signal(SIGTERM, SIG_IGN);
  ::close(STDOUT_FILENO);
  ::close(STDERR_FILENO);
  for (;;) ::pause();
}

// Leaves a process behind that holds both streams for as long as it lives.
int leaveHolder() {
  writeAll(STDOUT_FILENO, "said");
  if (::fork() == 0) {
    ::alarm(10);
    for (;;) ::pause();
  }
  return 0;
}

}  // namespace

int main(int count, char** arguments) {
  const std::string_view what = count > 1 ? arguments[1] : "";
  const char* more = count > 2 ? arguments[2] : "";
  if (what == "arguments") return reportArguments(count - 2, arguments + 2);
  if (what == "environment") return reportEnvironment(more);
  if (what == "descriptors") return reportDescriptors();
  if (what == "signals") return reportSignals();
  if (what == "exit") return std::atoi(more);
  if (what == "raise") return ::raise(std::atoi(more));
  if (what == "flood") return flood(static_cast<std::size_t>(std::atoi(more)));
  if (what == "stubborn") return stubborn();
  if (what == "holder") return leaveHolder();
  if (what == "both") {
    writeAll(STDOUT_FILENO, "to output\n");
    writeAll(STDERR_FILENO, "to error\n");
    return 3;
  }
  return 99;
}
