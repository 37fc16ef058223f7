#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <sched.h>
#include <set>
#include <sys/mount.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

#include "fakes/CartellaTemporanea.h"
#include "fakes/SistemaStretto.h"
#include "platform/linux/DirectoryListerLinux.h"
#include "platform/linux/TrashCanLinux.h"
#include "platform/linux/TrashRecord.h"

namespace {

/// Whether volumes are as those of some servers: without the promise not to replace.
bool withoutPromise = false;

}  // namespace

/// In place of the system's.
extern "C" int renameat2(int from, const char* name, int to, const char* next,
                         unsigned flags) noexcept {
  if (withoutPromise && flags != 0) {
    errno = EINVAL;
    return -1;
  }
  return static_cast<int>(::syscall(SYS_renameat2, from, name, to, next, flags));
}

namespace pellak::native {
namespace {

namespace fs = std::filesystem;
using fakes::leggiFile;
using fakes::scriviFile;

class TrashCanLinuxTest : public testing::Test {
 protected:
  TrashCanLinuxTest() {
    ::setenv("HOME", home_.percorso().c_str(), 1);
    ::unsetenv("XDG_DATA_HOME");
  }

  std::string file(const std::string& nome, const std::string& testo = "x") {
    scriviFile(home_ / nome, testo);
    return home_ / nome;
  }

  TrashPlan plan(const std::string& percorso) {
    auto piano = batch_->plan(percorso);
    EXPECT_TRUE(piano.ok()) << percorso;
    return piano ? *piano : TrashPlan{};
  }

  std::size_t records() const { return fakes::quanteVoci(trash_ + "/info"); }

  fakes::CartellaTemporanea home_;
  const std::string trash_ = home_ / ".local/share/Trash";
  TrashCanLinux can_;
  std::unique_ptr<TrashBatch> batch_ = can_.begin();
};

TEST(TrashRecordTest, EveryByteComesBackFromItsPercentForm) {
  std::string tutti;
  for (int byte = 0; byte < 256; ++byte) tutti += static_cast<char>(byte);
  const std::string scritti = percentEncoded(tutti);
  EXPECT_EQ(scritti.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                      "0123456789-._~/%"),
            std::string::npos);
  EXPECT_EQ(percentDecoded(scritti), tutti);
  EXPECT_EQ(percentDecoded("%e8%zz%4%"), "\xe8%zz%4%");
}

TEST_F(TrashCanLinuxTest, NamesThatAreTakenOrPromisedGetANumberAndStayShortEnough) {
  const std::string lungo(255, 'n');
  scriviFile(trash_ + "/files/uno", "solo l'elemento");
  scriviFile(trash_ + "/info/uno.2.trashinfo", "solo la scheda");
  std::set<std::string> nomi;
  for (const char* cartella : {"a", "b", "c"}) {
    for (const std::string& nome : {std::string("uno"), lungo}) {
      const TrashPlan piano = plan(file(std::string(cartella) + "/" + nome, cartella));
      nomi.insert(piano.nelCestino);
      const auto mosso = batch_->move(piano);
      ASSERT_TRUE(mosso.ok());
      EXPECT_EQ(leggiFile(*mosso), cartella);
      EXPECT_EQ(batch_->locate(piano), piano.nelCestino);
    }
  }
  EXPECT_EQ(nomi.size(), 6U);
  EXPECT_TRUE(nomi.contains(trash_ + "/files/uno.3"));
  EXPECT_EQ(leggiFile(trash_ + "/files/uno"), "solo l'elemento");
  EXPECT_EQ(leggiFile(trash_ + "/info/uno.2.trashinfo"), "solo la scheda");
}

TEST_F(TrashCanLinuxTest, TwoBatchesWithOnePlanNeverReplaceEachOther) {
  const TrashPlan primo = plan(file("a/doc", "primo"));
  const auto altro = can_.begin();
  const auto secondo = altro->plan(file("b/doc", "secondo"));
  ASSERT_TRUE(secondo.ok());
  ASSERT_EQ(primo.nelCestino, secondo->nelCestino);
  ASSERT_TRUE(batch_->move(primo).ok());
  EXPECT_EQ(altro->move(*secondo).error().kind, ErrorKind::exists);
  EXPECT_EQ(leggiFile(home_ / "b/doc"), "secondo");
  EXPECT_EQ(altro->locate(*secondo), "") << "another's item under the name";
  altro->abandon(*secondo);
  EXPECT_EQ(batch_->locate(primo), primo.nelCestino) << "its record must stay";
  EXPECT_EQ(records(), 1U);
}

TEST_F(TrashCanLinuxTest, WhatWasPutAtThePathAfterThePlanStays) {
  const TrashPlan piano = plan(file("a/doc", "di prima"));
  fs::rename(home_ / "a/doc", home_ / "a/tenuto");
  file("a/doc", "di un altro");
  EXPECT_EQ(batch_->move(piano).error().kind, ErrorKind::invalid);
  EXPECT_EQ(leggiFile(home_ / "a/doc"), "di un altro");
  fs::remove(home_ / "a/doc");
  EXPECT_EQ(batch_->move(piano).error().kind, ErrorKind::missing);
  EXPECT_EQ(records(), 0U);
  fs::rename(home_ / "a", home_ / "vera");
  fs::create_directory_symlink(home_ / "vera", home_ / "a");
  EXPECT_EQ(can_.begin()->plan(home_ / "a/tenuto").error().kind, ErrorKind::invalid);
}

TEST_F(TrashCanLinuxTest, AVolumeMountedBelowAfterThePlanKeepsTheFolder) {
  if (::unshare(CLONE_NEWNS) != 0 ||
      ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
    GTEST_SKIP() << "mounts a volume, so it needs root";
  }
  file("d/dentro/a");
  const TrashPlan piano = plan(home_ / "d");
  const std::string dentro = home_ / "d/dentro";
  ASSERT_EQ(::mount("tmpfs", dentro.c_str(), "tmpfs", 0, nullptr), 0);
  EXPECT_EQ(batch_->move(piano).error().kind, ErrorKind::mounted);
  EXPECT_EQ(can_.begin()->plan(home_ / "d").error().kind, ErrorKind::mounted);
  EXPECT_EQ(can_.begin()->plan(dentro).error().kind, ErrorKind::busy);
  ASSERT_EQ(::umount(dentro.c_str()), 0);
  EXPECT_TRUE(batch_->move(piano).ok());
  EXPECT_EQ(leggiFile(trash_ + "/files/d/dentro/a"), "x");
}

TEST_F(TrashCanLinuxTest, PuttingBackNeverReplacesAndTakesOnlyItsOwnRecordAway) {
  const TrashPlan uno = plan(file("uno", "1"));
  const TrashPlan due = plan(file("due", "2"));
  ASSERT_TRUE(batch_->move(uno).ok() && batch_->move(due).ok());
  file("uno", "nuovo");
  EXPECT_EQ(batch_->putBack(uno.nelCestino, home_ / "uno").error().kind, ErrorKind::exists);
  fs::create_directory_symlink(home_.percorso(), home_ / "via");
  EXPECT_FALSE(batch_->putBack(uno.nelCestino, home_ / "via/manca/uno").ok());
  EXPECT_FALSE(fs::exists(home_ / "manca"));
  ASSERT_TRUE(batch_->putBack(due.nelCestino, home_ / "due").ok());
  // Somebody else gives the name, free again, to an item before the batch ends.
  scriviFile(due.nelCestino, "di un altro");
  ASSERT_TRUE(batch_->sync().ok());
  EXPECT_EQ(records(), 2U);
  fs::remove(due.nelCestino);
  batch_->abandon(due);
  batch_->abandon(uno);
  EXPECT_EQ(records(), 1U) << "only the record without its item goes";
  EXPECT_EQ(leggiFile(home_ / "uno"), "nuovo");
  EXPECT_EQ(leggiFile(uno.nelCestino), "1");
}

TEST_F(TrashCanLinuxTest, ARecordCutShortIsNobodysButItsItemIsFoundByItsNumber) {
  const TrashPlan piano = plan(file("a", "1"));
  ASSERT_TRUE(batch_->move(piano).ok());
  scriviFile(trash_ + "/info/a.trashinfo", "[Trash Info]\nPath=/al");
  EXPECT_EQ(batch_->locate(piano), piano.nelCestino);
  TrashPlan altro = piano;
  ++altro.ino;
  EXPECT_EQ(batch_->locate(altro), "");
  fs::rename(piano.nelCestino, home_ / "a");
  batch_->abandon(piano);
  EXPECT_EQ(records(), 0U);
}

TEST_F(TrashCanLinuxTest, TheCacheOfFolderSizesFollowsTheFolders) {
  scriviFile(trash_ + "/directorysizes", "7 123 sparita\nrotta\n8 123 con%20spazio");
  fs::create_directories(trash_ + "/files/con spazio");
  file("d\n/dentro");
  TrashPlan piano = plan(home_ / "d\n");
  piano.size = 4321;
  ASSERT_TRUE(batch_->move(piano).ok());
  ASSERT_TRUE(batch_->sync().ok());
  const std::string scritte = leggiFile(trash_ + "/directorysizes");
  EXPECT_TRUE(scritte.starts_with("8 123 con%20spazio\n4321 ")) << scritte;
  EXPECT_TRUE(scritte.ends_with(" d%0A\n")) << scritte;
  ASSERT_TRUE(batch_->putBack(piano.nelCestino, home_ / "d").ok());
  ASSERT_TRUE(batch_->sync().ok());
  EXPECT_EQ(leggiFile(trash_ + "/directorysizes"), "8 123 con%20spazio\n");
}

TEST_F(TrashCanLinuxTest, APathLongerThanTheSystemTakesGoesAndComesBack) {
  const TrashPlan piano =
      plan(fakes::makeDeepChain(home_.percorso(), 30, std::string(200, 'p')) + "/f");
  DirectoryListerLinux lister;
  ASSERT_TRUE(batch_->move(piano).ok());
  EXPECT_EQ(lister.attributes(piano.percorso).error().kind, ErrorKind::missing);
  EXPECT_EQ(can_.begin()->locate(piano), piano.nelCestino) << "the whole path is in the record";
  ASSERT_TRUE(batch_->putBack(piano.nelCestino, piano.percorso).ok());
  EXPECT_TRUE(lister.attributes(piano.percorso).ok());
}

TEST_F(TrashCanLinuxTest, NothingIsReplacedWhereTheVolumePromisesNothing) {
  withoutPromise = true;
  const TrashPlan primo = plan(file("a/nota", "prima"));
  const TrashPlan preso = plan(file("b/nota", "seconda"));
  ASSERT_NE(primo.nelCestino, preso.nelCestino);
  EXPECT_TRUE(batch_->move(primo).ok());
  scriviFile(preso.nelCestino, "di un altro");
  EXPECT_EQ(batch_->move(preso).error().kind, ErrorKind::exists);
  EXPECT_EQ(leggiFile(preso.percorso), "seconda");
  EXPECT_EQ(leggiFile(preso.nelCestino), "di un altro");
  EXPECT_EQ(batch_->putBack(primo.nelCestino, preso.percorso).error().kind, ErrorKind::exists);
  EXPECT_EQ(leggiFile(preso.percorso), "seconda");
  EXPECT_TRUE(batch_->putBack(primo.nelCestino, primo.percorso).ok());
  EXPECT_EQ(leggiFile(primo.percorso), "prima");
  EXPECT_TRUE(batch_->sync().ok());
  EXPECT_EQ(records(), 0U);
  withoutPromise = false;
}

/// Batches whose records are made ahead of the moves.
class AnnouncedMovesTest : public TrashCanLinuxTest {
 protected:
  /// Every other item has `lungo` more bytes in its path.
  void planMany(int quanti, std::size_t lungo = 0) {
    for (int i = 0; i < quanti; ++i) {
      const std::string cartella = i % 2 == 0 ? "m/" : "m" + std::string(lungo, 'n') + "/";
      piani_.push_back(plan(file(cartella + std::to_string(i))));
    }
  }

  void announce() {
    std::vector<const TrashPlan*> posti;
    for (const TrashPlan& piano : piani_) posti.push_back(&piano);
    batch_->announce(posti);
  }

  void expectOnlyRecordsOfItems() const {
    std::size_t items = 0;
    for (const auto& voce : fs::directory_iterator(trash_ + "/files")) {
      ++items;
      EXPECT_TRUE(fs::exists(trash_ + "/info/" + recordName(voce.path().filename().string())));
    }
    EXPECT_EQ(records(), items);
  }

  std::vector<TrashPlan> piani_;
};

TEST_F(AnnouncedMovesTest, RecordsOfMovesThatDidNotComeAboutGo) {
  planMany(4500);
  announce();
  std::size_t mossi = 0;
  for (std::size_t i = 0; i < piani_.size(); i += i % 3 + 1) {
    if (i % 5 == 0) fs::rename(piani_[i].percorso, home_ / "altrove");
    if (i % 10 == 0) scriviFile(piani_[i].percorso, "di un altro");
    const auto mosso = batch_->move(piani_[i]);
    EXPECT_EQ(mosso.ok(), i % 5 != 0) << i;
    if (!mosso) continue;
    ++mossi;
    if (i % 50 == 1) {
      EXPECT_EQ(can_.begin()->locate(piani_[i]), piani_[i].nelCestino);
    }
  }
  ASSERT_TRUE(batch_->sync().ok());
  EXPECT_EQ(records(), mossi);
  expectOnlyRecordsOfItems();
}

TEST_F(AnnouncedMovesTest, ABatchThatIsGivenUpLeavesNothing) {
  planMany(1000);
  announce();
  EXPECT_TRUE(batch_->move(piani_[0]).ok());
  batch_.reset();
  EXPECT_EQ(records(), 1U);
  expectOnlyRecordsOfItems();
}

TEST_F(AnnouncedMovesTest, ANameTakenAfterThePlanStaysItsTakers) {
  const TrashPlan piano = plan(file("altra/7", "7"));
  EXPECT_EQ(piano.nelCestino, trash_ + "/files/7");
  scriviFile(trash_ + "/info/7.trashinfo", "di un altro");
  piani_.push_back(piano);
  planMany(200);
  announce();
  EXPECT_EQ(batch_->move(piano).error().kind, ErrorKind::exists);
  for (std::size_t i = 1; i < piani_.size(); ++i) EXPECT_TRUE(batch_->move(piani_[i]).ok()) << i;
  ASSERT_TRUE(batch_->sync().ok());
  EXPECT_EQ(leggiFile(trash_ + "/info/7.trashinfo"), "di un altro");
  EXPECT_EQ(records(), 201U);
}

TEST_F(AnnouncedMovesTest, AnItemWhoseRecordCannotBeWrittenStays) {
  constexpr rlim_t kLongest = 300;  // bytes that fit into a file; half of the records take more
  planMany(400, 240);
  const auto segnale = std::signal(SIGXFSZ, SIG_IGN);
  std::optional<fakes::LowerLimit> limite(std::in_place, RLIMIT_FSIZE, kLongest);
  announce();
  for (std::size_t i = 0; i < piani_.size(); ++i) {
    EXPECT_EQ(batch_->move(piani_[i]).ok(), i % 2 == 0) << i;
    EXPECT_EQ(fs::exists(piani_[i].percorso), i % 2 == 1) << i;
  }
  EXPECT_TRUE(batch_->sync().ok());
  limite.reset();
  std::signal(SIGXFSZ, segnale);
  EXPECT_EQ(records(), 200U);
  expectOnlyRecordsOfItems();
}

TEST_F(TrashCanLinuxTest, TheTrashIsTheTrashBehindLinksToo) {
  fs::create_directories(home_ / "vera/.local/share");
  fs::create_symlink("vera", home_ / "casa");
  ::setenv("HOME", (home_ / "casa").c_str(), 1);
  const TrashCanLinux can;
  EXPECT_TRUE(can.insideTrash(home_ / "casa/.local/share/Trash/files/a"));
  EXPECT_TRUE(can.insideTrash(home_ / "vera/.local/share/Trash/files/a"));
  EXPECT_FALSE(can.insideTrash(home_ / "vera/a"));
}

}  // namespace
}  // namespace pellak::native
