// The native lister, and the walker over it, where a real file system is nasty: long paths,
// refusals, few descriptors, folders that change meanwhile.
#include <algorithm>
#include <atomic>
#include <dirent.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "fakes/CartellaTemporanea.h"
#include "platform/linux/DirectoryListerLinux.h"
#include "scanners/walker/Walker.h"

namespace pellak {
namespace {

using fakes::CartellaTemporanea;
using fakes::scriviFile;
using testing::ElementsAre;

/// Lowers the number of descriptors that the process may have for a scope.
class FewDescriptors {
 public:
  explicit FewDescriptors(rlim_t most) {
    EXPECT_EQ(::getrlimit(RLIMIT_NOFILE, &before_), 0);
    const rlimit now{most, before_.rlim_max};
    EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &now), 0);
  }
  ~FewDescriptors() { EXPECT_EQ(::setrlimit(RLIMIT_NOFILE, &before_), 0); }
  FewDescriptors(const FewDescriptors&) = delete;
  FewDescriptors& operator=(const FewDescriptors&) = delete;

 private:
  rlimit before_{};
};

class DirectoryListerTest : public testing::Test {
 protected:
  std::vector<std::string> files(const std::string& root) {
    auto found = walker::parallelWalk(
        ambiente_, std::vector{root}, {}, {},
        [](std::string_view p, const struct stat&) { return std::optional(std::string(p)); });
    std::sort(found.begin(), found.end());
    return found;
  }

  static int descriptorsOpen() {
    int count = 0;
    DIR* stream = ::opendir("/proc/self/fd");
    while (::readdir(stream) != nullptr) ++count;
    ::closedir(stream);
    return count;
  }

  CartellaTemporanea folder_;
  native::DirectoryListerLinux lister_;
  walker::Ambiente ambiente_{lister_, {}};
};

/// A chain of folders below `top`, each with a file "f" and a branch, whose path is longer than
/// one system call takes. Made step by step; the destructor of the temporary folder copes.
std::string makeDeepChain(const std::string& top, int levels, const std::string& name) {
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

TEST_F(DirectoryListerTest, ReachesPathsBeyondWhatOneCallTakes) {
  const std::string deepest = makeDeepChain(folder_.percorso(), 60, std::string(250, 'n'));
  ASSERT_GT(deepest.size(), 15000U);
  EXPECT_EQ(walker::nameList(ambiente_, deepest), std::vector<std::string>{"f"});
  EXPECT_EQ(walker::bulkList(ambiente_, deepest)->at(0).size, 1);
  EXPECT_EQ(walker::statNoFollow(ambiente_, deepest + "/f")->st_size, 1);
  EXPECT_FALSE(walker::statNoFollow(ambiente_, deepest + "/gone"));
  EXPECT_GT(walker::treeSize(ambiente_, deepest), 0);
  EXPECT_THAT(files(deepest), ElementsAre(deepest + "/f"));
  const auto all = files(folder_.percorso());
  ASSERT_EQ(all.size(), 60U);
  EXPECT_NE(std::find(all.begin(), all.end(), deepest + "/f"), all.end());
}

TEST_F(DirectoryListerTest, RefusesPathsThatCannotBeMeant) {
  for (const std::string& bad : {std::string(), folder_.percorso() + std::string("\0/x", 3)}) {
    EXPECT_EQ(lister_.open(bad).error().kind, ErrorKind::invalid);
    EXPECT_EQ(lister_.attributes(bad).error().kind, ErrorKind::invalid);
  }
  EXPECT_FALSE(lister_.open('/' + std::string(300, 'x')).ok());
  EXPECT_FALSE(lister_.open('/' + std::string(9000, 'x')).ok());
}

TEST_F(DirectoryListerTest, MakesDoWithFewDescriptors) {
  makeDeepChain(folder_.percorso(), 700, "d");
  for (int i = 0; i < 300; ++i) {
    scriviFile(folder_ / ("wide/" + std::to_string(i) + "/below/f"), "x");
  }
  const int before = descriptorsOpen();
  const auto expected = files(folder_.percorso());
  ASSERT_EQ(expected.size(), 1000U);
  const std::int64_t bytes = walker::treeSize(ambiente_, folder_.percorso());
  for (const rlim_t most : {rlim_t{256}, rlim_t{64}}) {
    const FewDescriptors scope(most);
    EXPECT_EQ(files(folder_.percorso()), expected) << most;
    EXPECT_EQ(walker::treeSize(ambiente_, folder_.percorso()), bytes) << most;
  }
  EXPECT_EQ(descriptorsOpen(), before);
}

TEST_F(DirectoryListerTest, SurvivesATreeThatChangesMeanwhile) {
  scriviFile(folder_ / "still/f", "x");
  std::atomic<bool> over{false};
  std::thread changer([&] {
    for (int i = 0; !over; ++i) {
      const std::string moving = folder_ / ("m" + std::to_string(i % 5));
      std::error_code ignored;
      scriviFile(moving + "/a/b/f", "x");
      std::filesystem::remove_all(moving + "/a", ignored);
      std::filesystem::create_symlink("..", moving + "/a", ignored);
      std::filesystem::remove_all(moving, ignored);
    }
  });
  for (int i = 0; i < 300; ++i) {
    const auto found = files(folder_.percorso());
    EXPECT_EQ(std::count(found.begin(), found.end(), folder_ / "still/f"), 1);
    for (const std::string& path : found) EXPECT_EQ(path.find("/a/m"), std::string::npos) << path;
    walker::treeSize(ambiente_, folder_.percorso());
  }
  over = true;
  changer.join();
}

TEST_F(DirectoryListerTest, GetsThroughTheProcessFileSystem) {
  EXPECT_GT(files("/proc/self/").size(), 10U);
  EXPECT_EQ(walker::treeSize(ambiente_, "/proc/self/task"), 0);
}

}  // namespace
}  // namespace pellak
