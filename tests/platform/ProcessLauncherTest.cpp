#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "platform/posix/Descriptor.h"
#include "platform/posix/ProcessLauncherPosix.h"

namespace pellak::posix {
namespace {

using namespace std::chrono_literals;

/// Only SIGKILL ends it; both streams are closed.
constexpr const char* kStubborn = "trap '' TERM; exec sleep 60 >&- 2>&-";
constexpr const char* kBoth = "echo to output; echo to error >&2; exit 3";
/// Its open descriptors, one of which belongs to `ls`, and what standard input holds.
constexpr const char* kDescriptors = "ls /dev/fd; cat";
constexpr const char* kOnlyTheStandardOnes = "0\n1\n2\n3\n";

struct Ran {
  ExitStatus fine;
  std::string output;
  std::string error;
};

LaunchRequest shell(const std::string& line, ChildStreams flussi = ChildStreams::merged) {
  return {"/bin/sh", {"-c", line}, flussi, {}};
}

Ran run(ProcessLauncher& launcher, const LaunchRequest& what) {
  Ran ran;
  const auto child = launcher.start(what);
  EXPECT_TRUE(child) << child.error().text;
  if (!child) return ran;
  if (what.flussi != ChildStreams::errorOnly) {
    EXPECT_EQ((*child)->readOutput(ran.output), ReadEnd::endOfFile);
  }
  if (what.flussi != ChildStreams::merged) {
    EXPECT_EQ((*child)->readError(ran.error), ReadEnd::endOfFile);
  }
  ran.fine = (*child)->wait();
  return ran;
}

std::vector<int> openDescriptors() {
  std::vector<int> open;
  for (int number = 0; number < 4096; ++number) {
    if (::fcntl(number, F_GETFD) >= 0) open.push_back(number);
  }
  return open;
}

// True when this process has no child left, neither running nor uncollected.
bool noChildren() {
  siginfo_t ignored{};
  return ::waitid(P_ALL, 0, &ignored, WEXITED | WNOHANG | WNOWAIT) < 0 && errno == ECHILD;
}

class ProcessLauncherTest : public testing::Test {
 protected:
  ProcessLauncherPosix launcher;
};

TEST_F(ProcessLauncherTest, ArgumentsArriveAsTheyAre) {
  const Ran ran = run(launcher, {"/usr/bin/printf",
                                 {"[%s]", "", "a b", "$HOME", "'\"\\", "\xff\n*"},
                                 ChildStreams::merged,
                                 {}});
  EXPECT_EQ(ran.output, "[][a b][$HOME]['\"\\][\xff\n*]");
  EXPECT_EQ(ran.fine, (ExitStatus{false, 0}));
}

TEST_F(ProcessLauncherTest, EachWayOfConnectingTheStreams) {
  const Ran merged = run(launcher, shell(kBoth, ChildStreams::merged));
  EXPECT_EQ(merged.output, "to output\nto error\n");
  EXPECT_EQ(merged.fine, (ExitStatus{false, 3}));
  const Ran separate = run(launcher, shell(kBoth, ChildStreams::separate));
  EXPECT_EQ(separate.output, "to output\n");
  EXPECT_EQ(separate.error, "to error\n");
  const Ran errorOnly = run(launcher, shell(kBoth, ChildStreams::errorOnly));
  EXPECT_EQ(errorOnly.error, "to error\n");
}

TEST_F(ProcessLauncherTest, EnvironmentIsInheritedAddedToAndReplaced) {
  ASSERT_EQ(::setenv("PELLAK_LAUNCH_TEST", "inherited", 1), 0);
  LaunchRequest what = shell("printf %s \"${PELLAK_LAUNCH_TEST-(unset)}\"");
  EXPECT_EQ(run(launcher, what).output, "inherited");
  what.ambiente = {{"PELLAK_LAUNCH_TEST", "replaced=by this"}};
  EXPECT_EQ(run(launcher, what).output, "replaced=by this");
  ASSERT_EQ(::unsetenv("PELLAK_LAUNCH_TEST"), 0);
  EXPECT_EQ(run(launcher, what).output, "replaced=by this");
  what.ambiente.clear();
  EXPECT_EQ(run(launcher, what).output, "(unset)");
}

TEST_F(ProcessLauncherTest, ChildGetsNoDescriptorOfOurs) {
  // As a careless library would open them, low and high numbers.
  const Descriptor low(::open("/dev/null", O_RDONLY));
  const Descriptor high(::fcntl(low.get(), F_DUPFD, 700));
  ASSERT_TRUE(low);
  ASSERT_TRUE(high);
  const auto other = launcher.start(shell(kStubborn, ChildStreams::separate));
  ASSERT_TRUE(other);
  EXPECT_EQ(run(launcher, shell(kDescriptors, ChildStreams::separate)).output,
            kOnlyTheStandardOnes);
  EXPECT_EQ(run(launcher, shell(kDescriptors)).output, kOnlyTheStandardOnes);
  (*other)->kill();
  EXPECT_EQ((*other)->wait(), (ExitStatus{true, SIGKILL}));
}

TEST_F(ProcessLauncherTest, WorksInAProcessWithoutStandardDescriptors) {
  const std::array<int, 3> kept = {::fcntl(0, F_DUPFD_CLOEXEC, 100),
                                   ::fcntl(1, F_DUPFD_CLOEXEC, 100),
                                   ::fcntl(2, F_DUPFD_CLOEXEC, 100)};
  for (const int number : {0, 1, 2}) ::close(number);
  const Ran both = run(launcher, shell(kBoth, ChildStreams::separate));
  const Ran open = run(launcher, shell(kDescriptors));
  const auto running = launcher.start(shell(kStubborn, ChildStreams::separate));
  const bool standardTaken = openDescriptors().front() < 3;
  if (running) (*running)->kill();
  for (const int number : {0, 1, 2}) {
    ::dup2(kept[static_cast<std::size_t>(number)], number);
    ::close(kept[static_cast<std::size_t>(number)]);
  }
  EXPECT_EQ(both.output, "to output\n");
  EXPECT_EQ(both.error, "to error\n");
  EXPECT_EQ(open.output, kOnlyTheStandardOnes);
  EXPECT_FALSE(standardTaken) << "what this process prints would go down a pipe";
}

TEST_F(ProcessLauncherTest, SignalsAreUnblockedAndDefaultInTheChild) {
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  sigaddset(&blocked, SIGUSR1);
  ASSERT_EQ(::pthread_sigmask(SIG_BLOCK, &blocked, &before), 0);
  const auto pipeBefore = ::signal(SIGPIPE, SIG_IGN);
  const auto hangUpBefore = ::signal(SIGHUP, SIG_IGN);
  std::vector<Ran> ran;
  for (const char* name : {"TERM", "USR1", "PIPE", "HUP"}) {
    ran.push_back(run(launcher, shell("kill -" + std::string(name) + " $$")));
  }
  ::signal(SIGPIPE, pipeBefore);
  ::signal(SIGHUP, hangUpBefore);
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
  for (std::size_t i = 0; const int ends : {SIGTERM, SIGUSR1, SIGPIPE, SIGHUP}) {
    EXPECT_EQ(ran[i++].fine, (ExitStatus{true, ends}));
  }
}

// A process may be started with SIGCHLD ignored; the launcher must still hear of its children.
TEST_F(ProcessLauncherTest, HearsOfItsChildrenWhateverItWasStartedWith) {
  const auto before = ::signal(SIGCHLD, SIG_IGN);
  ProcessLauncherPosix late;
  EXPECT_EQ(run(late, shell("exit 7")).fine, (ExitStatus{false, 7}));
  ::signal(SIGCHLD, before);
}

TEST_F(ProcessLauncherTest, WhatCannotBeStarted) {
  const auto before = openDescriptors();
  const auto kind = [&](std::string percorso, std::vector<std::string> arguments = {}) {
    const auto child = launcher.start({std::move(percorso), std::move(arguments), {}, {}});
    return child ? ErrorKind::cancelled : child.error().kind;
  };
  EXPECT_EQ(kind("/no/such/program"), ErrorKind::missing);
  EXPECT_EQ(kind("/tmp"), ErrorKind::denied);
  EXPECT_EQ(kind("sh"), ErrorKind::invalid);
  EXPECT_EQ(kind(""), ErrorKind::invalid);
  EXPECT_EQ(kind("/bin/sh", {std::string("a\0b", 3)}), ErrorKind::invalid);
  EXPECT_EQ(kind("/bin/sh", {std::string(8 << 20, 'x')}), ErrorKind::failed);
  LaunchRequest badName = shell("");
  badName.ambiente = {{"A=B", "c"}};
  EXPECT_FALSE(launcher.start(badName));
  EXPECT_EQ(openDescriptors(), before);
  EXPECT_TRUE(noChildren());
}

TEST_F(ProcessLauncherTest, TerminateAsksAndKillEnds) {
  const auto started = launcher.start(shell(kStubborn));
  ASSERT_TRUE(started);
  ChildProcess& child = **started;
  std::string nothing;
  ASSERT_EQ(child.readOutput(nothing), ReadEnd::endOfFile);
  child.terminate();
  std::this_thread::sleep_for(50ms);
  EXPECT_FALSE(child.ended());
  std::thread waiter([&] { EXPECT_EQ(child.wait(), (ExitStatus{true, SIGKILL})); });
  child.kill();
  EXPECT_EQ(child.wait(), (ExitStatus{true, SIGKILL}));
  waiter.join();
  child.kill();
  EXPECT_TRUE(noChildren());
}

TEST_F(ProcessLauncherTest, ReadingCanBeGivenUpWhileSomebodyHoldsTheStream) {
  const auto started = launcher.start(shell("printf said; sleep 10 &", ChildStreams::separate));
  ASSERT_TRUE(started);
  ChildProcess& child = **started;
  std::string output;
  std::string error;
  ReadEnd outputEnd = ReadEnd::failed;
  ReadEnd errorEnd = ReadEnd::failed;
  std::thread outputReader([&] { outputEnd = child.readOutput(output); });
  std::thread errorReader([&] { errorEnd = child.readError(error); });
  EXPECT_EQ(child.wait(), (ExitStatus{false, 0}));
  std::this_thread::sleep_for(50ms);
  child.giveUpReading();
  outputReader.join();
  errorReader.join();
  EXPECT_EQ(outputEnd, ReadEnd::givenUp);
  EXPECT_EQ(errorEnd, ReadEnd::givenUp);
  EXPECT_EQ(output, "said");
  EXPECT_EQ(child.readOutput(output), ReadEnd::givenUp);
}

TEST_F(ProcessLauncherTest, AbandonedChildGoesOnAndIsCollectedAtItsEnd) {
  const auto before = openDescriptors();
  for (int i = 0; i < 3; ++i) {
    const auto child = launcher.start({"/bin/sleep", {"2"}, ChildStreams::separate, {}});
    ASSERT_TRUE(child);
  }
  EXPECT_FALSE(noChildren()) << "nobody waited for them";
  EXPECT_EQ(openDescriptors(), before);
  for (int i = 0; i < 6000 && !noChildren(); ++i) std::this_thread::sleep_for(10ms);
  EXPECT_TRUE(noChildren());
}

TEST_F(ProcessLauncherTest, ManyThreadsStartingAtOnceLeakNothing) {
  const auto before = openDescriptors();
  std::atomic<int> right = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < 10; ++i) {
        const std::string mark = std::to_string(t) + "." + std::to_string(i);
        if (run(launcher, shell("printf " + mark)).output == mark) ++right;
        if (run(launcher, shell(kDescriptors)).output == kOnlyTheStandardOnes) ++right;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(right, 160);
  EXPECT_EQ(openDescriptors(), before);
  EXPECT_TRUE(noChildren());
}

}  // namespace
}  // namespace pellak::posix
