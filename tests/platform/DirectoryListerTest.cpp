// The native lister, and the walker over it, where a real file system is nasty: long paths,
// refusals, few descriptors, folders that change meanwhile.
#include <algorithm>
#include <atomic>
#include <dirent.h>
#include <gmock/gmock.h>
#include <map>
#include <mutex>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "fakes/CartellaTemporanea.h"
#include "fakes/SistemaStretto.h"
#include "platform/Native.h"
#include "scanners/walker/Walker.h"

namespace pellak {
namespace {

using fakes::CartellaTemporanea;
using fakes::makeDeepChain;
using fakes::scriviFile;
using testing::ElementsAre;
using testing::Pair;

class DirectoryListerTest : public testing::Test {
 protected:
  std::vector<std::string> files(const std::string& root) {
    auto found = walker::parallelWalk(
        ambiente_, std::vector{root}, {}, {},
        [](std::string_view p, const struct stat&) { return std::optional(std::string(p)); });
    std::sort(found.begin(), found.end());
    return found;
  }

  std::map<std::string, int> refusals() { return std::exchange(refusals_, {}); }

  static int descriptorsOpen() {
    int count = 0;
    DIR* stream = ::opendir("/dev/fd");
    while (::readdir(stream) != nullptr) ++count;
    ::closedir(stream);
    return count;
  }

  CartellaTemporanea folder_;
  const std::unique_ptr<Native> native_ = creaNative();
  DirectoryLister& lister_ = native_->platform().lister;
  std::mutex lock_;
  std::map<std::string, int> refusals_;
  walker::Ambiente ambiente_{lister_, [this](std::string_view p) {
                               const std::lock_guard hold(lock_);
                               ++refusals_[std::string(p)];
                             }};
};

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

TEST_F(DirectoryListerTest, FindsTheRealPathBehindLinks) {
  const std::string top = folder_.percorso();
  scriviFile(folder_ / "vero/dentro/f", "x");
  const auto collega = [&](const std::string& a, const std::string& nome) {
    ASSERT_EQ(::symlink(a.c_str(), (folder_ / nome).c_str()), 0);
  };
  collega("vero/../vero/./dentro", "relativo");
  collega(top + "/relativo", "vero/assoluto");
  collega("giro2", "giro1");
  collega("giro1", "giro2");
  collega("nulla", "appeso");
  const std::string fondo = makeDeepChain(top + "/vero", 25, std::string(200, 'l'));
  collega("vero", "corto");
  const auto reale = [&](const std::string& nome) { return lister_.resolve(top + nome); };
  EXPECT_EQ(*reale("/vero/assoluto//f"), top + "/vero/dentro/f");
  EXPECT_EQ(*reale("/corto" + fondo.substr(top.size() + 5)), fondo) << "of any length";
  EXPECT_EQ(*lister_.resolve("/.."), "/");
  EXPECT_EQ(reale("/appeso").error().kind, ErrorKind::missing);
  EXPECT_FALSE(reale("/giro1/f").ok());
  EXPECT_FALSE(lister_.resolve("relativo").ok());
}

TEST_F(DirectoryListerTest, RefusesPathsThatCannotBeMeant) {
  for (const std::string& bad : {std::string(), folder_.percorso() + std::string("\0/x", 3)}) {
    EXPECT_EQ(lister_.open(bad).error().kind, ErrorKind::invalid);
    EXPECT_EQ(lister_.attributes(bad).error().kind, ErrorKind::invalid);
  }
  EXPECT_FALSE(lister_.open('/' + std::string(300, 'x')).ok());
  EXPECT_FALSE(lister_.open('/' + std::string(9000, 'x')).ok());
}

TEST_F(DirectoryListerTest, CountsWhatAnUnprivilegedUserMayNotRead) {
  const std::string shut = folder_ / "shut";
  const std::string noSearch = folder_ / "nosearch";
  scriviFile(shut + "/in", "x");
  scriviFile(noSearch + "/in", "x");
  scriviFile(folder_ / "free", "x");
  ASSERT_EQ(::chmod(folder_.percorso().c_str(), 0755), 0);
  ASSERT_EQ(::chmod(shut.c_str(), 0000), 0);
  ASSERT_EQ(::chmod(noSearch.c_str(), 0444), 0);
  {
    const fakes::WithoutPrivileges scope;
    EXPECT_THAT(files(folder_.percorso()), ElementsAre(folder_ / "free"));
    EXPECT_THAT(refusals(), ElementsAre(Pair(noSearch + "/in", 1), Pair(shut, 1)));
    EXPECT_EQ(walker::treeSize(ambiente_, folder_.percorso()),
              walker::treeSize(ambiente_, folder_ / "free"));
    EXPECT_THAT(refusals(), ElementsAre(Pair(noSearch + "/in", 1), Pair(shut, 1)));
    EXPECT_FALSE(walker::bulkList(ambiente_, shut));
    EXPECT_FALSE(walker::nameList(ambiente_, shut));
    EXPECT_TRUE(files(shut).empty() && files(folder_ / "missing").empty());
    EXPECT_FALSE(walker::statNoFollow(ambiente_, shut + "/in"));
    EXPECT_EQ(walker::nameList(ambiente_, noSearch), std::vector<std::string>{"in"});
    EXPECT_THAT(refusals(), ElementsAre(Pair(shut, 3), Pair(shut + "/in", 1)));
  }
  ASSERT_EQ(::chmod(shut.c_str(), 0755), 0);
  ASSERT_EQ(::chmod(noSearch.c_str(), 0755), 0);
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
    const fakes::LowerLimit scope(RLIMIT_NOFILE, most);
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
  if (!std::filesystem::exists("/proc/self")) GTEST_SKIP() << "no such file system here";
  EXPECT_GT(files("/proc/self/").size(), 10U);
  EXPECT_EQ(walker::treeSize(ambiente_, "/proc/self/task"), 0);
}

}  // namespace
}  // namespace pellak
