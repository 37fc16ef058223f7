// What every lister must give through the walker: the same tree on the disk and in memory, the
// latter listed in each of the ways in which systems answer.
#include <algorithm>
#include <atomic>
#include <gmock/gmock.h>
#include <set>

#include "scanners/walker/Walker.h"
#include "walker/World.h"

namespace pellak::walker {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

struct Kind {
  const char* name;
  std::function<std::unique_ptr<World>()> make;
};

Kind memory(const char* name, const MemoryWorld::Setup& setup) {
  return {name, [setup] { return std::make_unique<MemoryWorld>(setup); }};
}

class WalkerTest : public testing::TestWithParam<Kind> {
 protected:
  std::string at(const std::string& p) const { return world_->at(p); }
  const Ambiente& ambiente() const { return ambiente_; }

  /// Names below the root that a walk visits, without the root's path.
  std::vector<std::string> visited(const Filtro& filtro, const std::vector<std::string>& radici) {
    const std::size_t stem = world_->root().size();
    auto found =
        parallelWalk(ambiente_, radici, filtro, {}, [&](std::string_view p, const struct stat& s) {
          EXPECT_TRUE(S_ISREG(s.st_mode)) << p;
          return std::optional(std::string(p.substr(stem)));
        });
    std::sort(found.begin(), found.end());
    return found;
  }

  /// One of everything.
  void makeMixedTree() {
    world_->file("/a.txt", 5000);
    world_->file("/sub/b.bin", 70000);
    world_->file("/sub/deeper/c", 0);
    world_->hardLink("/sub/deeper/again", "/sub/b.bin");
    world_->folder("/empty");
    world_->link("/toSub", "sub");
    world_->link("/sub/toFile", "b.bin");
    world_->link("/sub/dangling", "nowhere");
    world_->pipe("/pipe");
  }

  std::int64_t mixedTreeBytes() {
    return world_->alloc("/a.txt") + 2 * world_->alloc("/sub/b.bin") +
           world_->alloc("/sub/deeper/c") + world_->alloc("/pipe");
  }

  std::unique_ptr<World> world_ = GetParam().make();
  std::atomic<int> refusals_{0};
  Ambiente ambiente_{world_->lister(), [this](std::string_view) { ++refusals_; }};
};

TEST_P(WalkerTest, ListsOneFolderWithAttributes) {
  makeMixedTree();
  std::map<std::string, BulkEntry> entries;
  const auto listed = bulkList(ambiente(), at(""));
  ASSERT_TRUE(listed);
  for (const BulkEntry& e : *listed) entries[e.name] = e;
  EXPECT_THAT(nameList(ambiente(), at("")).value(),
              UnorderedElementsAre("a.txt", "sub", "empty", "toSub", "pipe"));
  ASSERT_EQ(entries.size(), 5U);

  const auto record = statNoFollow(ambiente(), at("/a.txt")).value();
  const BulkEntry& file = entries["a.txt"];
  EXPECT_TRUE(file.isReg && !file.isDir && !file.isLnk);
  EXPECT_EQ(file.size, 5000);
  EXPECT_EQ(file.alloc, world_->alloc("/a.txt"));
  EXPECT_EQ(file.alloc, record.st_blocks * 512);
  EXPECT_EQ(file.ino, record.st_ino);
  EXPECT_EQ(file.mtime, static_cast<double>(record.st_mtime));
  EXPECT_EQ(file.dev, static_cast<std::int32_t>(record.st_dev));
  EXPECT_TRUE(entries["sub"].isDir);
  EXPECT_EQ(entries["sub"].size, 0);
  EXPECT_EQ(entries["sub"].alloc, 0);
  EXPECT_TRUE(entries["toSub"].isLnk && !entries["toSub"].isDir);
  EXPECT_FALSE(entries["pipe"].isReg || entries["pipe"].isDir || entries["pipe"].isLnk);
}

TEST_P(WalkerTest, ReadsRecordsWithoutFollowingLinks) {
  makeMixedTree();
  EXPECT_TRUE(S_ISLNK(statNoFollow(ambiente(), at("/toSub"))->st_mode));
  EXPECT_TRUE(S_ISDIR(statNoFollow(ambiente(), at("/sub"))->st_mode));
  EXPECT_TRUE(S_ISFIFO(statNoFollow(ambiente(), at("/pipe"))->st_mode));
  EXPECT_EQ(statNoFollow(ambiente(), at("/sub/b.bin"))->st_nlink, 2U);
  EXPECT_FALSE(statNoFollow(ambiente(), at("/gone")));
  for (const char* none : {"/a.txt", "/toSub", "/gone", "/a.txt/below"}) {
    EXPECT_FALSE(bulkList(ambiente(), at(none))) << none;
    EXPECT_FALSE(nameList(ambiente(), at(none))) << none;
  }
  EXPECT_EQ(refusals_, 0);
}

TEST_P(WalkerTest, MeasuresBlocksOfEverythingButFoldersAndLinks) {
  makeMixedTree();
  EXPECT_EQ(treeSize(ambiente(), at("")), mixedTreeBytes());
  EXPECT_EQ(treeSize(ambiente(), at("/a.txt")), world_->alloc("/a.txt"));
  EXPECT_EQ(treeSize(ambiente(), at("/toSub")), 0);
  EXPECT_EQ(treeSize(ambiente(), at("/empty")), 0);
  EXPECT_EQ(treeSize(ambiente(), at("/gone")), 0);
}

TEST_P(WalkerTest, MeasuresManyRootsLikeOneByOne) {
  makeMixedTree();
  const std::vector<std::string> roots = {at("/gone"),  at("/toSub"), at("/a.txt"), at("/sub"),
                                          at("/empty"), at(""),       at("/sub")};
  const auto sizes = measureTrees(ambiente(), roots);
  ASSERT_EQ(sizes.size(), roots.size());
  EXPECT_FALSE(sizes[0]);
  for (std::size_t i = 1; i < roots.size(); ++i) {
    EXPECT_EQ(sizes[i], treeSize(ambiente(), roots[i])) << roots[i];
  }
  std::multiset<std::size_t> told;
  measureTrees(ambiente(), roots, {}, [&](std::size_t i, std::optional<std::int64_t> bytes) {
    told.insert(i);
    EXPECT_EQ(bytes, sizes[i]);
  });
  EXPECT_THAT(told, ElementsAre(0, 1, 2, 3, 4, 5, 6));
  EXPECT_THAT(measureTrees(ambiente(), {}), IsEmpty());
}

TEST_P(WalkerTest, WhatHasAnotherNameOutsideIsNotFreed) {
  for (const char* folder : {"/t", "/t/x", "/u"}) world_->folder(folder);
  world_->file("/t/inside", 5000);
  world_->hardLink("/t/x/again", "/t/inside");
  world_->file("/t/x/outside", 70000);
  world_->hardLink("/u/outside", "/t/x/outside");
  world_->file("/u/plain", 9000);
  world_->pipe("/u/pipe");
  world_->link("/u/link", "plain");
  const std::int64_t inside = world_->alloc("/t/inside");
  const std::int64_t outside = world_->alloc("/t/x/outside");
  const std::int64_t plain = world_->alloc("/u/plain");
  EXPECT_THAT(measureForTrash(ambiente(), std::vector{at("/t"), at("/u"), at(""), at("/t/inside"),
                                                      at("/u/plain"), at("/gone")}),
              ElementsAre(Misura{2 * inside + outside, inside}, Misura{outside + plain, plain},
                          Misura{2 * inside + 2 * outside + plain, inside + outside + plain},
                          Misura{inside, 0}, Misura{plain, plain}, std::nullopt));
}

TEST_P(WalkerTest, WalksRegularFilesOnly) {
  makeMixedTree();
  EXPECT_THAT(visited({}, {at("")}),
              ElementsAre("/a.txt", "/sub/b.bin", "/sub/deeper/again", "/sub/deeper/c"));
  EXPECT_THAT(visited({}, {at("/toSub"), at("/a.txt"), at("/gone")}), IsEmpty());
  Filtro big;
  big.minBytes = 5000;
  EXPECT_THAT(visited(big, {at("")}), ElementsAre("/a.txt", "/sub/b.bin", "/sub/deeper/again"));
  big.minBytes = 5001;
  EXPECT_THAT(visited(big, {at("")}), ElementsAre("/sub/b.bin", "/sub/deeper/again"));
}

TEST_P(WalkerTest, LeavesOutFoldersByNameAndEnding) {
  world_->file("/keep/node_modules", 1);  // a file of an excluded name
  world_->file("/keep/notes.app", 1);
  world_->file("/x/node_modules/in", 1);
  world_->file("/x/Node_modules/in", 1);
  world_->file("/x/my_node_modules/in", 1);
  world_->file("/Tool.app/Contents/in", 1);
  world_->file("/Tool.appendix/in", 1);
  Filtro filtro;
  filtro.esclusioni = Esclusioni({"zzz", "node_modules", ".git"}, {".app"});
  EXPECT_THAT(visited(filtro, {at("")}),
              ElementsAre("/Tool.appendix/in", "/keep/node_modules", "/keep/notes.app",
                          "/x/Node_modules/in", "/x/my_node_modules/in"));
  EXPECT_THAT(visited(filtro, {at("/Tool.app")}), ElementsAre("/Tool.app/Contents/in"));
  EXPECT_EQ(treeSize(ambiente(), at("/Tool.app")), world_->alloc("/Tool.app/Contents/in"));

  filtro.entra = [&](std::string_view p) { return p != at("/keep") && p != at("/x/Node_modules"); };
  EXPECT_THAT(visited(filtro, {at("")}), ElementsAre("/Tool.appendix/in", "/x/my_node_modules/in"));
  EXPECT_THAT(visited(filtro, {at("/keep")}), IsEmpty());
}

TEST_P(WalkerTest, StaysOutOfThePlacesItIsTold) {
  world_->file("/sub/nas/a", 5000);
  world_->file("/nas/b", 6000);
  Confini confini({at("/sub/nas"), at("/manca")});
  ambiente_.confini = &confini;
  EXPECT_THAT(visited({}, {at("")}), ElementsAre("/nas/b"));
  EXPECT_EQ(treeSize(ambiente(), at("")), world_->alloc("/nas/b"));
  EXPECT_THAT(detail::walkLevel(ambiente(), at("/sub"), {}, {}), IsEmpty());
  EXPECT_THAT(confini.incontrati(), ElementsAre(at("/sub/nas")));
  EXPECT_THAT(visited({}, {at("/sub/nas")}), ElementsAre("/sub/nas/a")) << "a root is entered";
}

TEST_P(WalkerTest, ListsOneLevelInListingOrder) {
  makeMixedTree();
  world_->file("/z.txt", 10);
  Filtro filtro;
  filtro.esclusioni = Esclusioni({"empty"}, {});
  const auto livello =
      listForWalk(ambiente(), at(""), filtro, [](std::string_view p, const struct stat& s) {
        return s.st_size > 0 ? std::optional(std::string(p)) : std::nullopt;
      });
  EXPECT_THAT(livello.sottocartelle, ElementsAre(at("/sub")));
  std::vector<std::string> expected;
  const auto names = nameList(ambiente(), at(""));
  ASSERT_TRUE(names);
  for (const std::string& name : *names) {
    if (name.ends_with(".txt")) expected.push_back(at("/" + name));
  }
  EXPECT_EQ(livello.risultati, expected);
}

TEST_P(WalkerTest, KeepsNamesAsBytes) {
  const std::vector<std::string> names = {"with\nnewline",       "caff\xE8",   "\xFF\xFE", " ",
                                          std::string(255, 'n'), "back\\slash"};
  for (const std::string& name : names) world_->file("/odd\n\xC3/" + name, 1);
  std::vector<std::string> expected;
  for (const std::string& name : names) expected.push_back("/odd\n\xC3/" + name);
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(visited({}, {at("")}), expected);
  EXPECT_GT(treeSize(ambiente(), at("")), 0);
}

TEST_P(WalkerTest, AStopIsAskedForOncePerFolderAndLikeAnExceptionDiscardsAll) {
  for (int i = 0; i < 40; ++i) world_->file("/d" + std::to_string(i) + "/e/f", 1);
  const std::vector<std::string> roots = {at("")};
  const auto keep = [](std::string_view, const struct stat&) { return std::optional(1); };
  int asked = 0;  // calls are one at a time
  const Stop count = [&] { return ++asked < 0; };
  EXPECT_EQ(parallelWalk(ambiente(), roots, {}, count, keep).size(), 40U);
  EXPECT_EQ(asked, 81);
  asked = 0;
  treeSize(ambiente(), at(""), count);
  EXPECT_EQ(asked, 81);
  for (const int last : {1, 2, 41, 81}) {
    asked = 0;
    const Stop stop = [&] { return ++asked >= last; };
    EXPECT_THROW(parallelWalk(ambiente(), roots, {}, stop, keep), ScanCancelled);
    EXPECT_EQ(asked, last);
    asked = 0;
    EXPECT_THROW(treeSize(ambiente(), at(""), stop), ScanCancelled);
    asked = 0;
    EXPECT_THROW(measureTrees(ambiente(), roots, stop), ScanCancelled);
  }
  EXPECT_EQ(treeSize(ambiente(), at("/d1/e/f"), [] { return true; }), world_->alloc("/d1/e/f"));
  const auto fail = [](std::string_view, const struct stat&) -> std::optional<int> {
    throw std::runtime_error("visitor");
  };
  EXPECT_THROW(parallelWalk(ambiente(), roots, {}, {}, fail), std::runtime_error);
}

TEST_P(WalkerTest, SpreadsOneHugeFolder) {
  constexpr int kFiles = 5000;
  std::int64_t bytes = 0;
  for (int i = 0; i < kFiles; ++i) {
    const std::string name = "/huge/f" + std::to_string(i);
    world_->file(name, i);
    bytes += world_->alloc(name);
  }
  const auto found = visited({}, {at("")});
  EXPECT_EQ(std::set<std::string>(found.begin(), found.end()).size(), std::size_t{kFiles});
  EXPECT_EQ(found.size(), std::size_t{kFiles});
  EXPECT_EQ(measureTrees(ambiente(), std::vector{at("/huge")}).front(), bytes);
  EXPECT_EQ(treeSize(ambiente(), at("/huge")), bytes);
}

INSTANTIATE_TEST_SUITE_P(Listers, WalkerTest,
                         testing::Values(Kind{"Disk", [] { return std::make_unique<DiskWorld>(); }},
                                         memory("Types", [](auto&) {}),
                                         memory("Attributes",
                                                [](auto& l) { l.carriesAttributes = true; }),
                                         memory("NoTypes", [](auto& l) { l.tellsTypes = false; }),
                                         memory("Uncertain",
                                                [](auto& l) {
                                                  l.carriesAttributes = true;
                                                  l.certain = false;
                                                }),
                                         memory("FewDescriptors", [](auto& l) { l.budget = 1; })),
                         [](const auto& kind) { return std::string(kind.param.name); });

}  // namespace
}  // namespace pellak::walker
