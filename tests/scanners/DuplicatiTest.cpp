#include <array>
#include <atomic>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <random>
#include <set>
#include <stdexcept>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "PellakCore/CopiaTenuta.h"
#include "PellakCore/base/Esadecimale.h"
#include "PellakCore/base/ScanCancelled.h"
#include "PellakCore/base/ThreadSetting.h"
#include "fakes/CartellaTemporanea.h"
#include "fakes/FakeClock.h"
#include "fakes/SistemaStretto.h"
#include "platform/Sha256.h"
#include "platform/linux/DirectoryListerLinux.h"
#include "platform/posix/FilesPosix.h"
#include "scanners/duplicati/Fila.h"
#include "scanners/duplicati/ScannerDuplicati.h"
#include "scanners/walker/Walker.h"

namespace pellak::scanners {
namespace {

using fakes::scriviFile;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::size_t kMiB = 1'048'576;

/// The system's reader, which notes how much is read of each path and lets a test step in.
class LettoreSpia final : public FileReader {
 public:
  std::function<void(const std::string&, ReadPlan)> primaDiAprire;
  std::function<void(const std::string&, std::int64_t)> dopoLettura;

  Result<std::unique_ptr<OpenFile>> open(std::string_view percorso, ReadPlan plan) override {
    const std::string testo(percorso);
    if (primaDiAprire) primaDiAprire(testo, plan);
    auto file = vero_->open(percorso, plan);
    if (!file) return file.error();
    return std::unique_ptr<OpenFile>(
        std::make_unique<FileSpia>(*this, testo, std::move(file).value()));
  }

  bool writable(std::string_view cartella) override {
    return cartella != protetta && vero_->writable(cartella);
  }

  std::string protetta;     ///< a folder that can't be written to
  std::string altroVolume;  ///< a file on another volume
  std::map<std::string, std::size_t> letti() const { return letti_; }
  void dimentica() { letti_.clear(); }
  bool volumeAdatto = true;

 private:
  class FileSpia final : public OpenFile {
   public:
    FileSpia(LettoreSpia& spia, std::string percorso, std::unique_ptr<OpenFile> vero)
        : spia_(spia), percorso_(std::move(percorso)), vero_(std::move(vero)) {}
    Result<FileMark> mark() const override {
      auto segno = vero_->mark();
      if (segno && percorso_ == spia_.altroVolume) ++segno->dev;
      return segno;
    }
    bool allHole() const override { return vero_->allHole(); }
    bool keepsChangeTimes() const override {
      return spia_.volumeAdatto && vero_->keepsChangeTimes();
    }
    Result<std::size_t> readAt(std::int64_t offset, std::span<std::byte> into) const override {
      auto letti = vero_->readAt(offset, into);
      if (letti) {
        const std::lock_guard hold(spia_.lock_);
        spia_.letti_[percorso_] += *letti;
      }
      if (spia_.dopoLettura) spia_.dopoLettura(percorso_, offset);
      return letti;
    }

   private:
    LettoreSpia& spia_;
    std::string percorso_;
    std::unique_ptr<OpenFile> vero_;
  };

  std::unique_ptr<FileReader> vero_ = creaFileReader();
  std::mutex lock_;
  std::map<std::string, std::size_t> letti_;
};

class DuplicatiTest : public ::testing::Test {
 protected:
  DuplicatiTest() {
    regole_.duplicati.minSizeMb = 0;
    regole_.duplicati.roots = {"~"};
    Denied::resetShared();
  }

  std::string scrivi(const std::string& nome, const std::string& testo) {
    scriviFile(casa_ / nome, testo);
    return casa_ / nome;
  }

  void scriviIn(const std::string& nome, std::int64_t dove, const std::string& testo) {
    const int file = ::open((casa_ / nome).c_str(), O_WRONLY);
    EXPECT_EQ(::pwrite(file, testo.data(), testo.size(), dove), std::ssize(testo));
    ::close(file);
  }

  void collega(const std::string& esistente, const std::string& nome) {
    std::filesystem::create_hard_link(casa_ / esistente, casa_ / nome);
  }

  Finding scan() {
    const ScanContext ctx{regole_, Config(),   casa_.percorso(), stop_,
                          {},      contatore_, lister_,          clock_};
    Finding finding;
    withCounter(contatore_, [&] { finding = scanDuplicati(ctx, lettore_, impronte_); });
    return finding;
  }

  /// The names of each group, without the folder of the test.
  std::vector<std::vector<std::string>> gruppi() {
    std::vector<std::vector<std::string>> elenco;
    for (const Group& gruppo : scan().groups) {
      auto& nomi = elenco.emplace_back();
      for (const std::string& p : gruppo.paths)
        nomi.push_back(p.substr(casa_.percorso().size() + 1));
    }
    return elenco;
  }

  fakes::CartellaTemporanea casa_;
  Regole regole_;
  LettoreSpia lettore_;
  Contatore contatore_{casa_.percorso(), true};
  std::function<bool()> stop_;
  Impronte* impronte_ = nullptr;
  fakes::FakeClock clock_{1'700'000'000};
  native::DirectoryListerLinux lister_;
};

std::string casuale(std::size_t lunghezza, unsigned seme) {
  std::mt19937 random(seme);
  std::string testo(lunghezza, '\0');
  for (char& byte : testo) byte = static_cast<char>(random());
  return testo;
}

std::string sha256(const std::string& testo) {
  const auto sha = creaTwinSha256();
  sha->update(0, std::as_bytes(std::span(testo)));
  return esadecimale(sha->finish(0));
}

TEST_F(DuplicatiTest, WhichCopyStaysFollowsFromWhereTheyLieTheirNamesAndTheirAge) {
  const std::vector<std::pair<std::string, int>> copie = {{"doc/fotocopie (di ieri)", 2},
                                                          {"doc/recente", 1},
                                                          {"Downloads/x", 5},
                                                          {"Desktop/a/x", 4},
                                                          {"doc/x (12).txt", 12},
                                                          {"doc/Copia di x", 11},
                                                          {"doc/x COPY", 10},
                                                          {"chiusa/x", 20},
                                                          {"altrove/x", 30}};
  lettore_.protetta = casa_ / "chiusa";
  lettore_.altroVolume = casa_ / "altrove/x";
  std::vector<std::string> ordine;
  for (const auto& [nome, ore] : copie) {
    std::filesystem::last_write_time(
        scrivi(nome, "uguali"),
        std::filesystem::file_time_type::clock::now() - std::chrono::hours(ore));
    ordine.push_back(nome);
  }
  const Finding finding = scan();
  ASSERT_EQ(finding.groups.size(), 1U);
  std::vector<std::string> trovate;
  for (const std::size_t copia : inOrdineDiTenuta(finding.groups[0])) {
    trovate.push_back(finding.groups[0].paths[copia].substr(casa_.percorso().size() + 1));
  }
  EXPECT_EQ(trovate, ordine);
  EXPECT_EQ(copiaTenuta(finding.groups[0]), inOrdineDiTenuta(finding.groups[0]).front());
}

TEST_F(DuplicatiTest, TellsTheFindingAsAPersonSeesIt) {
  scrivi("b/seconda", std::string(200'000, 'a'));
  scrivi("a/prima", std::string(200'000, 'a'));
  const Finding finding = scan();
  EXPECT_EQ(finding.id + " " + finding.mode, "duplicates delete");
  ASSERT_EQ(finding.groups.size(), 1U);
  EXPECT_EQ(finding.groups[0].size, 200'000);
  // sha256sum of 200,000 letters "a".
  EXPECT_EQ(esadecimale(finding.groups[0].hash),
            "2287d207f24a941ff3b56c04c8a25ad56b63e3023207b3bb5b4ac0c9869d74be");
  EXPECT_THAT(finding.groups[0].paths, ElementsAre(casa_ / "a/prima", casa_ / "b/seconda"));
  EXPECT_EQ(finding.totale(), 200'000);
  for (std::size_t i = 0; i < 2; ++i) {
    const auto ora = native::DirectoryListerLinux().attributes(finding.groups[0].paths[i]);
    EXPECT_EQ(finding.groups[0].identita.at(i), identitaDi(*ora));
  }
}

TEST_F(DuplicatiTest, OnlyEqualContentMakesAGroup) {
  for (const std::size_t lunghezza : {1UL, 65'535UL, 65'536UL, 65'537UL, 69'000UL, 3 * kMiB + 7}) {
    const std::string base = casuale(lunghezza, 1);
    const std::string nome = std::to_string(lunghezza);
    scrivi(nome + "/uguale1", base);
    scrivi(nome + "/uguale2", base);
    // One byte differs: first, last, in the middle, just behind the head, between the samples.
    for (const std::size_t dove :
         {std::size_t{0}, lunghezza - 1, lunghezza / 2, std::size_t{65'536}, lunghezza / 3}) {
      if (dove >= lunghezza) continue;
      std::string altra = base;
      altra[dove] = static_cast<char>(altra[dove] ^ static_cast<char>(1 + dove % 7));
      scrivi(nome + "/diverso" + std::to_string(dove), altra);
    }
  }
  // One byte alone has few values, and two of its others are equal too.
  std::filesystem::remove_all(casa_ / "1");
  const auto trovati = gruppi();
  ASSERT_EQ(trovati.size(), 5U);
  for (const auto& nomi : trovati) {
    ASSERT_EQ(nomi.size(), 2U);
    EXPECT_EQ(nomi[0].substr(nomi[0].find('/')), "/uguale1");
    EXPECT_EQ(nomi[1].substr(nomi[1].find('/')), "/uguale2");
  }
}

TEST_F(DuplicatiTest, HardLinksAreOneFileAndReadOnce) {
  const std::string testo = casuale(300'000, 2);
  scrivi("z-prima", testo);
  collega("z-prima", "b-nome");
  collega("z-prima", "m-nome");
  EXPECT_THAT(gruppi(), IsEmpty());
  EXPECT_THAT(lettore_.letti(), IsEmpty());
  scrivi("c-copia", testo);
  EXPECT_THAT(gruppi(), ElementsAre(ElementsAre("b-nome", "c-copia")));
  struct stat copia = {};
  ASSERT_EQ(::stat((casa_ / "c-copia").c_str(), &copia), 0);
  const Libere libere = scan().groups.front().libere;
  EXPECT_EQ(libere[0], 0) << "the other names of b-nome would stay";
  EXPECT_EQ(libere[1], copia.st_blocks * 512);
  EXPECT_EQ(lettore_.letti().count(casa_ / "m-nome"), 0U);
  EXPECT_EQ(lettore_.letti().count(casa_ / "z-prima"), 0U);
}

TEST_F(DuplicatiTest, ReadsNoMoreThanTheAnswerNeeds) {
  scrivi("sola", std::string(500'000, 'x'));
  for (const char* nome : {"piccolo1", "piccolo2"}) scrivi(nome, std::string(65'536, 'p'));
  scrivi("testa1", "1" + std::string(400'000, 't'));
  scrivi("testa2", "2" + std::string(400'000, 't'));
  scrivi("coda1", std::string(450'000, 'c') + "1");
  scrivi("coda2", std::string(450'000, 'c') + "2");
  const std::string lungo = casuale(8 * kMiB, 4);
  for (const char* nome : {"lungo1", "lungo2", "lungo3"}) {
    std::string diverso = lungo;
    diverso[600'000] = nome[5];
    scrivi(nome, diverso);
  }
  EXPECT_THAT(gruppi(), ElementsAre(ElementsAre("piccolo1", "piccolo2")));
  const auto letti = lettore_.letti();
  EXPECT_EQ(letti.count(casa_ / "sola"), 0U);
  EXPECT_EQ(letti.at(casa_ / "piccolo1"), 65'536U);
  for (const char* nome : {"testa1", "testa2", "coda1", "coda2"}) {
    EXPECT_LE(letti.at(casa_ / nome), 80'000U) << nome;
  }
  // What is known to stand alone is not read to its end.
  for (const char* nome : {"lungo1", "lungo2", "lungo3"}) {
    EXPECT_LE(letti.at(casa_ / nome), kMiB) << nome;
  }
}

TEST_F(DuplicatiTest, FilesPartWhereverTheyDiffer) {
  // Equal samples, so that only reading everything tells them apart. The differences lie in the
  // first block, at its end, in a later one and in several: each content has four copies.
  const std::string base = casuale(3 * kMiB + 100'000, 5);
  const std::vector<std::vector<std::size_t>> luoghi = {
      {}, {70'000}, {262'143}, {262'144}, {1 * kMiB}, {1 * kMiB, 2 * kMiB}, {70'000, 2 * kMiB}};
  std::map<std::string, std::vector<std::string>> attesi;
  for (std::size_t i = 0; i < luoghi.size(); ++i) {
    std::string testo = base;
    for (const std::size_t dove : luoghi[i]) testo[dove] ^= 1;
    for (const char* copia : {"a", "b", "c", "d"}) {
      const std::string nome = copia + std::to_string(i);
      scrivi(nome, testo);
      attesi[sha256(testo)].push_back(casa_ / nome);
    }
  }
  std::map<std::string, std::vector<std::string>> trovati;
  for (const Group& gruppo : scan().groups) trovati[esadecimale(gruppo.hash)] = gruppo.paths;
  EXPECT_EQ(trovati, attesi);
  for (const auto& [percorso, letti] : lettore_.letti()) {
    EXPECT_LE(letti, base.size() + 80'000) << percorso;
  }
}

TEST_F(DuplicatiTest, AFileThatGetsShorterTakesNoOtherAlong) {
  const std::string testo = casuale(3 * kMiB, 6);
  for (const char* nome : {"a", "b", "c"}) scrivi(nome, testo);
  std::atomic<bool> corto{false};
  lettore_.dopoLettura = [&](const std::string& percorso, std::int64_t offset) {
    if (percorso != casa_ / "a" || offset != 524'288 || corto.exchange(true)) return;
    std::filesystem::resize_file(percorso, kMiB);
  };
  const Finding finding = scan();
  EXPECT_TRUE(corto);
  ASSERT_EQ(finding.groups.size(), 1U);
  EXPECT_THAT(finding.groups[0].paths, ElementsAre(casa_ / "b", casa_ / "c"));
  EXPECT_EQ(esadecimale(finding.groups[0].hash), sha256(testo));
}

TEST_F(DuplicatiTest, AFewDescriptorsAreEnough) {
  std::vector<std::string> attesi;
  const std::string testo = casuale(100'000, 7);
  for (int i = 100; i < 220; ++i) attesi.push_back(scrivi("copie/" + std::to_string(i), testo));
  const fakes::LowerLimit pochi(RLIMIT_NOFILE, 48);
  const Finding finding = scan();
  ASSERT_EQ(finding.groups.size(), 1U);
  EXPECT_EQ(finding.groups[0].paths, attesi);
}

TEST_F(DuplicatiTest, TheThresholdCountsMebibytes) {
  regole_.duplicati.minSizeMb = 5;
  for (const char* nome : {"x1", "x2"}) {
    scrivi(std::string("giusto/") + nome, std::string(5 * kMiB, 'g'));
    scrivi(std::string("corto/") + nome, std::string(5 * kMiB - 1, 'g'));
  }
  EXPECT_THAT(gruppi(), ElementsAre(ElementsAre("giusto/x1", "giusto/x2")));
  for (const std::int64_t smisurata : {std::int64_t{1} << 43, INT64_MAX}) {
    regole_.duplicati.minSizeMb = smisurata;
    EXPECT_THAT(gruppi(), IsEmpty());
  }
}

TEST_F(DuplicatiTest, MostRecoverableFirstThenLargerThenByName) {
  for (int i = 0; i < 5; ++i) scrivi("cinque/" + std::to_string(i), std::string(100, 'a'));
  for (int i = 0; i < 2; ++i) scrivi("due-b/" + std::to_string(i), std::string(400, 'b'));
  for (int i = 0; i < 2; ++i) scrivi("due-a/" + std::to_string(i), std::string(400, 'c'));
  for (int i = 0; i < 2; ++i) scrivi("grande/" + std::to_string(i), std::string(401, 'd'));
  std::vector<std::string> primi;
  for (const auto& nomi : gruppi()) primi.push_back(nomi.front());
  EXPECT_THAT(primi, ElementsAre("grande/0", "due-a/0", "due-b/0", "cinque/0"));
}

TEST_F(DuplicatiTest, WhatIsExcludedNeverAppears) {
  const std::string testo(1'000, 'e');
  for (const char* nome : {"vero/a", "vero/b", "node_modules/c", "x/node_modules/y/d", "App.app/e",
                           "fuori/f", "fuori/sotto/g", "fuori2/h", "file.app"}) {
    scrivi(nome, testo);
  }
  regole_.duplicati.excludeDirNames = {"node_modules"};
  regole_.duplicati.excludeBundleSuffixes = {".app"};
  regole_.duplicati.excludePaths = {"~/fuori/", "", "relativo"};
  EXPECT_THAT(gruppi(), ElementsAre(ElementsAre("file.app", "fuori2/h", "vero/a", "vero/b")));
  std::filesystem::create_symlink(casa_ / "fuori", casa_ / "legame");
  regole_.duplicati.excludePaths = {"~/legame"};
  EXPECT_EQ(gruppi().front().size(), 4U) << "the folder behind the link is meant";
  regole_.duplicati.excludePaths = {casa_.percorso()};
  EXPECT_THAT(gruppi(), IsEmpty());
  regole_.guasto = "rotte";
  EXPECT_THROW(scan(), std::runtime_error);
}

TEST_F(DuplicatiTest, RootsMayOverlapOrBeMissing) {
  scrivi("d/a", "uguale");
  scrivi("d/b", "uguale");
  std::filesystem::create_symlink(casa_ / "d", casa_ / "legame");
  regole_.duplicati.roots = {"~/d", "~/manca", "~", "~/d/a", "~/legame", "d", ""};
  EXPECT_THAT(gruppi(), ElementsAre(ElementsAre("d/a", "d/b")));
  regole_.duplicati.roots = {};
  EXPECT_THAT(gruppi(), IsEmpty());
}

TEST_F(DuplicatiTest, NamesAreBytesOfAnyKind) {
  // Longer than one call to the system takes.
  const std::string profondo =
      fakes::makeDeepChain(casa_.percorso(), 25, std::string(200, 'l')) + "/f";
  scrivi("a\xff\xfe\n", "x");
  const auto trovati = gruppi();
  ASSERT_EQ(trovati.size(), 1U);
  EXPECT_EQ(trovati[0].size(), 26U);
  EXPECT_EQ(trovati[0].front(), "a\xff\xfe\n");
  EXPECT_EQ(trovati[0].back(), profondo.substr(casa_.percorso().size() + 1));
}

TEST_F(DuplicatiTest, RefusedFilesCountAndOthersStillGroup) {
  for (const char* nome : {"a", "b", "c"}) scrivi(nome, std::string(2'000, 'r'));
  ::chmod((casa_ / "b").c_str(), 0);
  ::chmod(casa_.percorso().c_str(), 0755);
  {
    const fakes::WithoutPrivileges scope;
    EXPECT_THAT(gruppi(), ElementsAre(ElementsAre("a", "c")));
  }
  EXPECT_THAT(contatore_.percorsi(), ElementsAre(casa_ / "b"));
  EXPECT_EQ(Denied::sharedCount(), 0);
}

TEST_F(DuplicatiTest, WhatVanishesOrIsReplacedDropsOut) {
  const std::string testo(100'000, 'v');
  for (const char* nome : {"a", "b", "pipa", "legame", "corto", "sparito", "sparito-poi"}) {
    scrivi(nome, testo);
  }
  scrivi("z", testo);
  collega("z", "nome-che-va");
  std::once_flag una;
  lettore_.primaDiAprire = [&](const std::string& percorso, ReadPlan plan) {
    std::call_once(una, [&] {
      for (const char* nome : {"sparito", "pipa", "legame", "nome-che-va"}) {
        std::filesystem::remove(casa_ / nome);
      }
      ::mkfifo((casa_ / "pipa").c_str(), 0600);
      std::filesystem::create_symlink(casa_ / "a", casa_ / "legame");
      std::filesystem::resize_file(casa_ / "corto", 99'999);
    });
    if (plan == ReadPlan::whole && percorso == casa_ / "sparito-poi") {
      std::filesystem::remove(percorso);
    }
  };
  EXPECT_THAT(gruppi(), ElementsAre(ElementsAre("a", "b", "z")));
  EXPECT_EQ(contatore_.n(), 0);
}

TEST_F(DuplicatiTest, AFileWrittenToWhileItIsReadIsNoDuplicate) {
  // A large one is caught between two blocks, a small one between reading and the last look.
  for (const std::size_t lunghezza : {2 * kMiB, std::size_t{5'000}}) {
    const std::string testo(lunghezza, 'w');
    const std::string uno = scrivi("uno", testo);
    scrivi("due", testo);
    std::atomic<bool> scritto{false};
    lettore_.dopoLettura = [&](const std::string& percorso, std::int64_t offset) {
      const bool adesso = lunghezza < kMiB || (offset > 0 && offset < 500'000);
      if (percorso != uno || !adesso || scritto.exchange(true)) return;
      const int file = ::open(uno.c_str(), O_WRONLY);
      ASSERT_EQ(::pwrite(file, "!", 1, 0), 1);
      const timespec vecchia[2] = {{0, UTIME_OMIT}, {1, 0}};
      ::futimens(file, vecchia);
      ::close(file);
    };
    EXPECT_THAT(gruppi(), IsEmpty());
    EXPECT_TRUE(scritto);
    lettore_.dopoLettura = {};
  }
}

TEST_F(DuplicatiTest, AStopAtAnyMomentEndsTheScan) {
  for (int i = 0; i < 6; ++i) scrivi("f" + std::to_string(i), std::string(2 * kMiB, 's'));
  std::atomic<int> domande{0};
  std::atomic<int> fino{INT_MAX};
  stop_ = [&] { return ++domande > fino; };
  EXPECT_EQ(gruppi().size(), 1U);
  const int tutte = domande;
  // The questions that a whole scan asks; between two of them at most two blocks are read.
  ASSERT_GE(tutte, 20);
  for (const int quante : {0, 1, 2, tutte / 3, tutte / 2, tutte - 20}) {
    domande = 0;
    fino = quante;
    EXPECT_THROW(gruppi(), ScanCancelled) << quante << " of " << tutte;
  }
}

TEST_F(DuplicatiTest, AGreatStopIsQuickInAHugeFile) {
  for (const char* nome : {"a", "b"}) {
    scrivi(nome, "");
    std::filesystem::resize_file(casa_ / nome, std::uintmax_t{1} << 36);
  }
  // Files that are one hole are equal without being read.
  const Finding vuoti = scan();
  ASSERT_EQ(vuoti.groups.size(), 1U);
  EXPECT_FALSE(vuoti.groups[0].conHash());
  for (const char* nome : {"a", "b"}) scriviIn(nome, (std::int64_t{1} << 36) - 10'000, "fine");
  std::atomic<bool> ferma{false};
  stop_ = [&] { return ferma.load(); };
  lettore_.dopoLettura = [&](const std::string&, std::int64_t offset) {
    if (offset > 0 && offset < 10'000'000) ferma = true;
  };
  EXPECT_THROW(gruppi(), ScanCancelled);
  for (const auto& [percorso, letti] : lettore_.letti()) EXPECT_LT(letti, 20 * kMiB) << percorso;
}

TEST_F(DuplicatiTest, WhatIsRememberedUnchangedIsNotReadAgain) {
  const std::string lungo = casuale(3 * kMiB, 8);
  for (const char* nome : {"a", "b", "solo1", "solo2", "solo3"}) scrivi(nome, lungo);
  for (const char* nome : {"solo1", "solo2", "solo3"}) {
    scriviIn(nome, 2 * kMiB, nome);  // where no sample lies
  }
  for (const char* nome : {"piccolo1", "piccolo2"}) scrivi(nome, std::string(9'000, 'p'));
  const fakes::CartellaTemporanea nostra;
  posix::FilesPosix files;
  Impronte impronte(files, nostra / "impronte");
  impronte_ = &impronte;
  const std::vector<std::vector<std::string>> attesi = {{"a", "b"}, {"piccolo1", "piccolo2"}};
  const auto leggi = [&](bool ricordati) {
    lettore_.dimentica();
    const Finding finding = scan();
    EXPECT_EQ(gruppi(), attesi);
    EXPECT_EQ(finding.groups.at(0).dallaCache, ricordati);
    return lettore_.letti();
  };
  const auto ora = static_cast<double>(::time(nullptr));
  clock_.advance(ora - 60 - clock_.now());
  EXPECT_EQ(leggi(false).size(), 7U) << "too fresh to be remembered";
  clock_.advance(3'600);
  lettore_.volumeAdatto = false;
  EXPECT_EQ(leggi(false).size(), 7U) << "not on such a volume";
  lettore_.volumeAdatto = true;
  scan();
  EXPECT_THAT(leggi(true), IsEmpty());

  // A changed file is read, and only what may now be equal to it.
  scriviIn("solo3", 2 * kMiB, std::string(lungo, 2 * kMiB, 5));
  lettore_.dimentica();
  EXPECT_THAT(gruppi(), ElementsAre(ElementsAre("a", "b", "solo3"), attesi[1]));
  EXPECT_EQ(lettore_.letti().count(casa_ / "a") + lettore_.letti().count(casa_ / "piccolo1"), 0U);
  EXPECT_EQ(lettore_.letti().count(casa_ / "solo3"), 1U);
  scriviIn("solo3", 2 * kMiB, "solo3");

  // A damaged file of ours is none.
  scan();
  std::string dati = fakes::leggiFile(nostra / "impronte");
  dati[dati.size() / 2] ^= 1;
  fakes::scriviFile(nostra / "impronte", dati);
  lettore_.dimentica();
  EXPECT_FALSE(scan().groups.at(0).dallaCache);
  EXPECT_EQ(lettore_.letti().size(), 7U);
}

thread_local bool inDisparte = false;

TEST_F(DuplicatiTest, EveryThreadOfALoweredScanIsLowered) {
  for (int i = 0; i < 40; ++i) scrivi(std::to_string(i % 7) + "/" + std::to_string(i), "uguale");
  std::atomic<int> altri{0};
  lettore_.primaDiAprire = [&](const std::string&, ReadPlan) { altri += inDisparte ? 0 : 1; };
  std::thread([&] {
    applyToThread([] { inDisparte = true; });
    EXPECT_EQ(gruppi().size(), 1U);
    const walker::Ambiente ambiente{lister_, {}};
    walker::parallelWalk(ambiente, std::vector{casa_.percorso()}, {}, {},
                         [&](std::string_view, const struct stat&) {
                           altri += inDisparte ? 0 : 1;
                           return std::optional<int>();
                         });
  }).join();
  EXPECT_EQ(altri, 0);
}

TEST_F(DuplicatiTest, FindsExactlyTheSetsOfEqualContent) {
  const auto inode = [](const std::string& percorso) {
    struct stat stato {};
    EXPECT_EQ(::lstat(percorso.c_str(), &stato), 0);
    return stato.st_ino;
  };
  std::mt19937 random(11);
  std::vector<std::string> testi;
  std::vector<std::string> nomi;
  std::map<std::string, std::set<ino_t>> uguali;
  for (int i = 0; i < 400; ++i) {
    nomi.push_back("c" + std::to_string(random() % 9) + "/s" + std::to_string(random() % 5) + "/" +
                   std::to_string(i));
    const std::string& nome = nomi.back();
    if (i > 0 && random() % 10 == 0) {
      std::filesystem::create_directories(std::filesystem::path(casa_ / nome).parent_path());
      collega(nomi[random() % (nomi.size() - 1)], nome);
      continue;
    }
    if (testi.empty() || random() % 3 == 0) {
      testi.push_back(casuale(1 + random() % 200'000, static_cast<unsigned>(i)));
    } else if (random() % 3 == 0) {
      std::string altro = testi[random() % testi.size()];
      altro[random() % altro.size()] ^= 1;
      testi.push_back(altro);
    }
    const std::string& testo = testi[random() % testi.size()];
    uguali[testo].insert(inode(scrivi(nome, testo)));
  }
  std::set<std::set<ino_t>> attesi;
  for (const auto& [testo, file] : uguali) {
    if (file.size() > 1) attesi.insert(file);
  }
  std::set<std::set<ino_t>> nostri;
  for (const Group& gruppo : scan().groups) {
    std::set<ino_t> insieme;
    for (const std::string& percorso : gruppo.paths) insieme.insert(inode(percorso));
    EXPECT_EQ(insieme.size(), gruppo.paths.size());
    nostri.insert(insieme);
  }
  EXPECT_GT(nostri.size(), 30U);
  EXPECT_EQ(nostri, attesi);
}

TEST(Fila, EmptiesAndFillsAgainAtTheEdgesOfItsPieces) {
  Fila<std::array<char, 262'144>> fila;  // two to a piece
  for (char volta = 0; volta < 6; ++volta) {
    for (char i = 0; i < volta; ++i) fila.push_back({volta, i});
    for (char i = 0; i < volta; ++i, fila.pop_front()) {
      ASSERT_EQ(fila.size(), static_cast<std::size_t>(volta - i));
      ASSERT_EQ(fila.front()[1], i);
    }
    ASSERT_TRUE(fila.empty());
  }
}

}  // namespace
}  // namespace pellak::scanners
