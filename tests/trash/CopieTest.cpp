#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <utility>

#include "PellakCore/base/Esadecimale.h"
#include "fakes/CartellaTemporanea.h"
#include "trash/Copie.h"

namespace pellak::trash {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kScritto = 1'700'000'000;

/// A set of three copies as a scan found it, with times.
class CopieTest : public testing::Test {
 protected:
  CopieTest() {
    gruppo_.size = 5;
    daEsadecimale("5994471abb01112afcc18159f6cc74b4f511b99806da59b3caf5a9c173cacfc5", gruppo_.hash);
    for (const char* nome : {"a", "b", "c"}) {
      scrivi(nome, "12345", kScritto);
      gruppo_.paths.push_back(home_ / nome);
      gruppo_.identita.push_back(vista(nome));
    }
  }

  Identita vista(const std::string& nome) {
    const FileMark ora = reader_->open(home_ / nome, ReadPlan::samples).value()->mark().value();
    return {ora.ino, ora.mtimeNs, ora.ctimeNs, EntryType::regular};
  }

  void scrivi(const std::string& nome, const std::string& testo, std::int64_t secondo) {
    fakes::scriviFile(home_ / nome, testo);
    const timespec quando{secondo, 250'000'000};
    const timespec tempi[] = {quando, quando};
    ASSERT_EQ(::utimensat(AT_FDCWD, (home_ / nome).c_str(), tempi, 0), 0);
  }

  bool conservabile(std::size_t copia) {
    std::vector<std::string> scartate = gruppo_.paths;
    scartate.erase(scartate.begin() + static_cast<std::ptrdiff_t>(copia));
    return copie_.conservabile(gruppo_, copia, scartate).has_value();
  }

  fakes::CartellaTemporanea home_;
  const std::unique_ptr<FileReader> reader_ = creaFileReader();
  const Copie copie_{*reader_};
  Group gruppo_;
};

TEST_F(CopieTest, OnlyACopyAsTheScanFoundItMayStay) {
  EXPECT_TRUE(conservabile(0) && conservabile(1) && conservabile(2));
  scrivi("a", "54321", kScritto + 1);
  EXPECT_FALSE(conservabile(0)) << "written since";
  EXPECT_EQ(copie_.scartabile(gruppo_, 0).error().kind, ErrorKind::invalid);
  scrivi("a", "123456", kScritto);
  EXPECT_FALSE(conservabile(0)) << "another size";
  fs::remove(home_ / "a");
  EXPECT_FALSE(conservabile(0));
  EXPECT_EQ(copie_.scartabile(gruppo_, 0).error().kind, ErrorKind::missing);
  fs::create_symlink(home_ / "b", home_ / "a");
  EXPECT_FALSE(conservabile(0)) << "a link holds nothing";
  fs::remove(home_ / "a");
  ASSERT_EQ(::mkfifo((home_ / "a").c_str(), 0600), 0);
  EXPECT_FALSE(conservabile(0));
}

TEST_F(CopieTest, AnotherNameOfADiscardedFileIsNoCopy) {
  fs::remove(home_ / "c");
  fs::create_hard_link(home_ / "b", home_ / "c");
  EXPECT_TRUE(conservabile(0));
  EXPECT_FALSE(conservabile(1));
  EXPECT_FALSE(conservabile(2));
  EXPECT_TRUE(copie_.conservabile(gruppo_, 1, {home_ / "a"}).has_value());
}

TEST_F(CopieTest, AWriteRightBeforeTheMoveIsSeen) {
  const auto stato = copie_.conservabile(gruppo_, 0, {home_ / "b"});
  ASSERT_TRUE(stato.has_value());
  EXPECT_TRUE(copie_.ancora(home_ / "a", *stato));
  scrivi("a", "54321", kScritto);
  EXPECT_FALSE(copie_.ancora(home_ / "a", *stato)) << "size and time set as they were";
}

TEST_F(CopieTest, WhereOnlyTheRecordIsAnotherTheContentDecides) {
  using Cambia = std::function<void(const std::string&)>;
  const Cambia nuoviDiritti = [&](const std::string& testo) { scrivi("a", testo, kScritto); };
  const Cambia altroFile = [&](const std::string& testo) {
    fs::remove(home_ / "a");
    scrivi("a", testo, kScritto);
  };
  const Cambia senzaIdentita = [&](const std::string& testo) {
    gruppo_.identita.clear();
    scrivi("a", testo, kScritto);
  };
  for (const Cambia& cambia : {nuoviDiritti, altroFile, senzaIdentita}) {
    cambia("12345");
    const Sha256Digest hash = std::exchange(gruppo_.hash, {});
    EXPECT_FALSE(conservabile(0)) << "nothing to compare with";
    gruppo_.hash = hash;
    EXPECT_TRUE(conservabile(0) && copie_.scartabile(gruppo_, 0));
    cambia("54321");
    EXPECT_FALSE(conservabile(0) || copie_.scartabile(gruppo_, 0));
  }
}

TEST_F(CopieTest, ARememberedSetIsReadTheCopyThatStaysAndThoseThatGo) {
  scrivi("c", "54321", kScritto);
  gruppo_.identita[2] = vista("c");
  EXPECT_TRUE(conservabile(2) && copie_.scartabile(gruppo_, 2)) << "the scan has read them";
  gruppo_.dallaCache = true;
  EXPECT_TRUE(conservabile(0) && copie_.scartabile(gruppo_, 1));
  EXPECT_FALSE(conservabile(2) || copie_.scartabile(gruppo_, 2));
}

}  // namespace
}  // namespace pellak::trash
