#include <gtest/gtest.h>
#include <random>

#include "fakes/MemoryLister.h"
#include "scanners/walker/FolderSizes.h"

namespace pellak::walker {
namespace {

class FolderSizesTest : public testing::Test {
 protected:
  /// 600 folders, each somewhere below an earlier one, with three files each.
  void grow() {
    std::mt19937 random(7);
    folders_ = {"/v/a", "/v/b"};
    for (int i = 0; i < 600; ++i) {
      folders_.push_back(folders_[random() % folders_.size()] + "/" + std::to_string(i));
      for (int f = 0; f < 3; ++f) {
        lister_.file(folders_.back() + "/f" + std::to_string(f), random() % 100'000);
      }
    }
  }

  FolderSizes measure(std::size_t most) {
    const std::vector<std::string> roots = {"/v/a", "/v/b", "/v/manca"};
    FolderNotes notes(most);
    measureTrees(
        ambiente_, roots, {}, [](std::size_t, std::optional<std::int64_t>) {}, &notes);
    return notes.finish(roots);
  }

  /// Compares everything known with a measure of its own; returns how much that is.
  std::size_t check(const FolderSizes& sizes) {
    std::size_t known = 0;
    for (const std::string& folder : folders_) {
      for (const auto& [name, bytes] : sizes.in(folder)) {
        ++known;
        EXPECT_EQ(bytes, treeSize(ambiente_, folder + "/" + std::string(name))) << folder << name;
      }
    }
    return known;
  }

  fakes::MemoryLister lister_;
  const Ambiente ambiente_{lister_, {}};
  std::vector<std::string> folders_;
};

TEST_F(FolderSizesTest, EveryFolderOfAMeasureIsKnownWithWhatLiesBelow) {
  grow();
  for (const bool typed : {true, false}) {
    lister_.tellsTypes = typed;
    const FolderSizes sizes = measure(10'000);
    EXPECT_EQ(check(sizes), 600U);
    EXPECT_TRUE(sizes.in("/v").empty());
    EXPECT_TRUE(sizes.in("/v/a/nulla").empty());
    EXPECT_TRUE(sizes.in("/v/a0").empty()) << "a name that only begins like a root";
    EXPECT_TRUE(sizes.in("/v/manca").empty());
  }
}

TEST_F(FolderSizesTest, BeyondTheLimitFoldersAreUnknownAndTheRestStaysRight) {
  grow();
  for (const std::size_t most : {0U, 1U, 50U, 599U}) {
    EXPECT_EQ(check(measure(most)), most);
  }
}

TEST(FolderListTest, NamesStandInWhereTheBulkListingFails) {
  fakes::MemoryLister lister;
  lister.file("/v/a", 5000);
  lister.folder("/v/b");
  lister.file("/v/segreto", 1).recordRefused = true;
  lister.folder("/v").readFails = true;
  lister.folder("/chiusa").refused = true;
  int refused = 0;
  const Ambiente ambiente{lister, [&](std::string_view) { ++refused; }};
  const auto listed = listFolder(ambiente, "/v");
  ASSERT_TRUE(listed.ok());
  ASSERT_EQ(listed->size(), 2U);
  EXPECT_EQ(listed->front().alloc, 8192);
  EXPECT_TRUE(listed->back().isDir);
  EXPECT_EQ(refused, 1);
  EXPECT_EQ(listFolder(ambiente, "/chiusa").error().kind, ErrorKind::denied);
}

}  // namespace
}  // namespace pellak::walker
