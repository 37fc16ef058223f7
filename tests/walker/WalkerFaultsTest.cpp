// How the walker behaves when listings fail, refuse, lie or go on for ever; in memory.
#include <algorithm>
#include <gmock/gmock.h>
#include <limits>
#include <map>
#include <mutex>

#include "fakes/MemoryLister.h"
#include "scanners/walker/Walker.h"

namespace pellak::walker {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

class WalkerFaultsTest : public testing::Test {
 protected:
  std::vector<std::string> walk(const std::string& root = "/r") {
    auto found = parallelWalk(
        ambiente_, std::vector{root}, {}, {},
        [](std::string_view p, const struct stat&) { return std::optional(std::string(p)); });
    std::sort(found.begin(), found.end());
    return found;
  }

  /// Refusals told since the last call, by path.
  std::map<std::string, int> refusals() { return std::exchange(refusals_, {}); }

  fakes::MemoryLister lister_;
  std::mutex lock_;
  std::map<std::string, int> refusals_;
  Ambiente ambiente_{lister_, [this](std::string_view p) {
                       const std::lock_guard hold(lock_);
                       ++refusals_[std::string(p)];
                     }};
};

TEST_F(WalkerFaultsTest, OnlyAFilesOwnRoomIsFreedAndWhatCannotBeAskedIsNot) {
  lister_.shares = true;
  lister_.file("/r/d/clone", 50'000).own = 4096;
  lister_.file("/r/d/plain", 50'000);
  lister_.file("/r/d/strange", 4096).own = 1 << 30;
  lister_.file("/r/d/twice", 8192).own = 4096;
  lister_.hardLink("/r/d/again", "/r/d/twice");
  lister_.file("/r/single", 50'000).own = 0;
  const std::int64_t byte = lister_.attributes("/r/d/plain")->alloc;
  const std::vector<std::string> roots = {"/r/d", "/r/single"};
  EXPECT_THAT(measureForTrash(ambiente_, roots),
              ElementsAre(Misura{2 * byte + 5 * 4096, byte + 3 * 4096}, Misura{byte, 0}));
  lister_.folder("/r").refused = true;
  EXPECT_EQ(measureForTrash(ambiente_, roots)[1], (Misura{byte, 0}));
  EXPECT_THAT(refusals(), IsEmpty());
}

TEST_F(WalkerFaultsTest, TellsARefusedRecordAndGoesOn) {
  lister_.file("/r/a", 1);
  lister_.file("/r/b", 1).recordRefused = true;
  EXPECT_THAT(walk(), ElementsAre("/r/a"));
  EXPECT_EQ(bulkList(ambiente_, "/r")->size(), 1U);
  EXPECT_FALSE(statNoFollow(ambiente_, "/r/b"));
  EXPECT_THAT(refusals(), ElementsAre(Pair("/r/b", 3)));
  const auto sizes = measureTrees(ambiente_, std::vector<std::string>{"/r/a", "/r/b"});
  EXPECT_THAT(sizes, ElementsAre(4096, std::nullopt));
  EXPECT_THAT(refusals(), ElementsAre(Pair("/r/b", 1)));
  EXPECT_EQ(treeSize({lister_, {}}, "/r"), 4096) << "nobody listens";
}

TEST_F(WalkerFaultsTest, DiscardsAListingThatFailsHalfWay) {
  for (const bool attributes : {false, true}) {
    lister_.carriesAttributes = attributes;
    lister_.file("/r/a", 1);
    lister_.file("/r/sub/b", 1);
    lister_.link("/r/sub/l");
    lister_.folder("/r").readFails = lister_.folder("/r/sub").readFails = true;
    EXPECT_THAT(walk(), ElementsAre("/r/a", "/r/sub/b"));
    EXPECT_EQ(treeSize(ambiente_, "/r"), 8192);
    EXPECT_FALSE(bulkList(ambiente_, "/r"));
    EXPECT_EQ(lister_.nameReads.exchange(0), 4);
  }
}

TEST_F(WalkerFaultsTest, ReadsNamesOfAnEmptyListingOnlyWhereThatIsUncertain) {
  lister_.folder("/r/empty");
  walk();
  EXPECT_EQ(lister_.nameReads, 0);
  lister_.certain = false;
  walk();
  EXPECT_EQ(lister_.nameReads, 1);
}

TEST_F(WalkerFaultsTest, MakesUpTheRecordOnlyWhenTheListingCarriesAttributes) {
  EntryAttributes& a = lister_.file("/r/f", 5000).attributes;
  a.mtime = 1700000000;
  a.flags = 3;
  a.uid = 501;
  a.nlink = 4;
  const auto record = [&] {
    return listForWalk(ambiente_, "/r", {},
                       [](std::string_view, const struct stat& s) { return std::optional(s); })
        .risultati.at(0);
  };
  const struct stat asked = record();
  EXPECT_EQ(asked.st_mode, mode_t{S_IFREG | 0640});
  EXPECT_EQ(asked.st_uid, 501U);
  EXPECT_EQ(asked.st_nlink, 4U);
  lister_.carriesAttributes = true;
  const struct stat carried = record();
  EXPECT_EQ(carried.st_mode, mode_t{S_IFREG | 0644});
  EXPECT_EQ(carried.st_uid, 0U);
  EXPECT_EQ(carried.st_nlink, 0U);
  EXPECT_EQ(carried.st_size, 5000);
  EXPECT_EQ(carried.st_blocks, 16);
  EXPECT_EQ(carried.st_mtime, 1700000000);
  EXPECT_EQ(carried.st_dev, asked.st_dev);
  EXPECT_EQ(carried.st_ino, asked.st_ino);
}

TEST_F(WalkerFaultsTest, ListsAtMostEightFoldersAtOnceAndKeepsFewOpen) {
  lister_.readMillis = 2;
  lister_.budget = 16;
  for (int i = 0; i < 30; ++i) {
    for (int j = 0; j < 6; ++j) {
      lister_.file("/r/" + std::to_string(i) + "/" + std::to_string(j) + "/f", 1);
    }
  }
  EXPECT_EQ(walk().size(), 180U);
  EXPECT_GT(lister_.mostReads, 1);
  EXPECT_LE(lister_.mostReads, 8);
  EXPECT_LE(lister_.mostOpen, 16 + 2 * 8);
  EXPECT_EQ(lister_.openNow, 0);
}

TEST_F(WalkerFaultsTest, GoesDownADeepBranchingTreeWithFewFoldersOpen) {
  constexpr int kLevels = 2000;
  lister_.budget = 8;
  std::string path = "/r";
  for (int i = 0; i < kLevels; ++i) {
    lister_.file(path + "/a/f", 1);  // found before "d", visited after all below it
    path += "/d";
  }
  EXPECT_EQ(treeSize(ambiente_, "/r"), kLevels * 4096);
  EXPECT_LE(lister_.mostOpen, 8 + 3);
  EXPECT_LT(lister_.opened, kLevels * kLevels / 4) << "closed folders were opened again one by one";
  const auto found = walk();
  ASSERT_EQ(found.size(), std::size_t{kLevels});
  const auto longest = std::max_element(
      found.begin(), found.end(), [](const auto& a, const auto& b) { return a.size() < b.size(); });
  EXPECT_EQ(longest->size(), path.size() - 2 + std::string("/a/f").size());
}

TEST_F(WalkerFaultsTest, JoinsPathsBelowTheRootFolder) {
  lister_.file("/f", 1);
  lister_.file("/d/g", 1);
  EXPECT_THAT(walk("/"), ElementsAre("/d/g", "/f"));
}

using WalkerDeathTest = WalkerFaultsTest;

TEST_F(WalkerDeathTest, StopsTheProcessWhenASumOverflows) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  lister_.file("/r/a", 1).attributes.alloc = std::numeric_limits<std::int64_t>::max();
  lister_.file("/r/b", 1);
  EXPECT_DEATH(treeSize(ambiente_, "/r"), "");
}

}  // namespace
}  // namespace pellak::walker
