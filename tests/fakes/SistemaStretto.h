#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pellak::fakes {

/// Until the end of the scope the process is a user without privileges, unless it is one anyway.
class WithoutPrivileges {
 public:
  WithoutPrivileges() {
    if (!root_) return;
    EXPECT_EQ(::setegid(65534), 0);
    EXPECT_EQ(::seteuid(65534), 0);
  }
  ~WithoutPrivileges() {
    if (!root_) return;
    EXPECT_EQ(::seteuid(0), 0);
    EXPECT_EQ(::setegid(0), 0);
  }
  WithoutPrivileges(const WithoutPrivileges&) = delete;
  WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;

 private:
  const bool root_ = ::geteuid() == 0;
};

/// Lowers a limit of the process for a scope.
class LowerLimit {
 public:
  using Resource = decltype(RLIMIT_NOFILE);
  LowerLimit(Resource resource, rlim_t most) : resource_(resource) {
    EXPECT_EQ(::getrlimit(resource_, &before_), 0);
    const rlimit now{most, before_.rlim_max};
    EXPECT_EQ(::setrlimit(resource_, &now), 0);
  }
  ~LowerLimit() { EXPECT_EQ(::setrlimit(resource_, &before_), 0); }
  LowerLimit(const LowerLimit&) = delete;
  LowerLimit& operator=(const LowerLimit&) = delete;

 private:
  const Resource resource_;
  rlimit before_{};
};

/// A chain of folders below `top`, each with a file "f" and a branch, whose path may be longer than
/// one system call takes. Made step by step; the destructor of the temporary folder copes.
inline std::string makeDeepChain(const std::string& top, int levels, const std::string& name) {
  int at = ::open(top.c_str(), O_RDONLY | O_DIRECTORY);
  std::string path = top;
  for (int i = 0; i < levels; ++i) {
    EXPECT_EQ(::mkdirat(at, name.c_str(), 0755), 0);
    EXPECT_EQ(::mkdirat(at, "branch", 0755), 0);
    const int below = ::openat(at, name.c_str(), O_RDONLY | O_DIRECTORY);
    ::close(at);
    at = below;
    const int file = ::openat(at, "f", O_WRONLY | O_CREAT, 0644);
    EXPECT_EQ(::write(file, "x", 1), 1);
    ::close(file);
    path += '/' + name;
  }
  ::close(at);
  return path;
}

}  // namespace pellak::fakes
