#include <cmath>
#include <gmock/gmock.h>
#include <limits>
#include <stdexcept>

#include "PellakCore/base/ScanCancelled.h"
#include "fakes/FakeClock.h"
#include "fakes/MemoryLister.h"
#include "scanners/grandi/ScannerGrandi.h"

namespace pellak::scanners {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr double kOra = 1'700'000'000;
constexpr std::int64_t kGiorno = 86'400;
constexpr std::int64_t kMiB = 1'048'576;

class GrandiTest : public ::testing::Test {
 protected:
  GrandiTest() {
    regole_.grandi.roots = {"~"};
    Denied::resetShared();
  }

  void file(const std::string& percorso, std::int64_t mib, std::int64_t giorni = 0) {
    disco_.file(percorso, mib * kMiB).attributes.mtime =
        static_cast<std::int64_t>(kOra) - giorni * kGiorno;
  }

  std::vector<Finding> scan() {
    const ScanContext ctx{regole_,      Config(),
                          "/casa/anna", stop_,
                          {},           contatore_,
                          disco_,       clock_,
                          volumi_,      [this](std::string nota) {
                            nota_ = std::move(nota); }};
    std::vector<Finding> trovati;
    withCounter(contatore_, [&] { trovati = scanGrandi(ctx); });
    return trovati;
  }

  static std::vector<std::string> percorsi(const Finding& finding) {
    std::vector<std::string> elenco;
    for (const Voce& voce : finding.items) elenco.push_back(voce.path);
    return elenco;
  }

  Regole regole_;
  fakes::MemoryLister disco_;
  Contatore contatore_{"/casa/anna", true};
  std::function<bool()> stop_;
  std::vector<Mount> volumi_;
  std::string nota_;
  fakes::FakeClock clock_{kOra};
};

TEST_F(GrandiTest, TwoListsHeaviestFirst) {
  file("/casa/anna/film", 300, 1);
  file("/casa/anna/Video/vecchio", 400, 200);
  file("/casa/anna/soglia", 200, 181);
  file("/casa/anna/poco", 199, 500);
  disco_.file("/casa/anna/un-byte-meno", 200 * kMiB - 1);
  const auto trovati = scan();
  ASSERT_EQ(trovati.size(), 2U);
  EXPECT_EQ(trovati[0].id + " " + trovati[0].mode, "large-files report");
  EXPECT_THAT(percorsi(trovati[0]),
              ElementsAre("/casa/anna/Video/vecchio", "/casa/anna/film", "/casa/anna/soglia"));
  EXPECT_EQ(trovati[0].items[1].size, 300 * kMiB);
  EXPECT_EQ(trovati[0].items[1].mtime, kOra - kGiorno);
  EXPECT_EQ(trovati[1].id + " " + trovati[1].mode, "large-old report");
  EXPECT_THAT(trovati[1].note, ::testing::HasSubstr(" 180 giorni"));
  EXPECT_THAT(percorsi(trovati[1]), ElementsAre("/casa/anna/Video/vecchio", "/casa/anna/soglia"));
}

TEST_F(GrandiTest, TheThresholdIsLogicalAndTheListIsOfBytesOnDisk) {
  disco_.file("/casa/anna/vuoto-dentro", 900 * kMiB).attributes.alloc = 4'096;
  file("/casa/anna/pieno", 210);
  const auto trovati = scan();
  EXPECT_THAT(percorsi(trovati[0]), ElementsAre("/casa/anna/pieno", "/casa/anna/vuoto-dentro"));
  EXPECT_EQ(trovati[0].items[1].size, 4'096);
}

TEST_F(GrandiTest, EachListHasItsOwnHeaviest) {
  for (int i = 0; i < 40; ++i) {
    file("/casa/anna/" + std::to_string(1'000 + i), 300 + i % 2, i < 20 ? 300 : 0);
  }
  auto trovati = scan();
  EXPECT_EQ(trovati[0].items.size(), 25U);
  EXPECT_EQ(trovati[1].items.size(), 20U);
  EXPECT_EQ(trovati[0].items[0].path, "/casa/anna/1001");
  EXPECT_EQ(trovati[0].items[20].path, "/casa/anna/1000");
  regole_.grandi.top = 3;
  EXPECT_THAT(percorsi(scan()[1]),
              ElementsAre("/casa/anna/1001", "/casa/anna/1003", "/casa/anna/1005"));
  for (const std::int64_t nessuno : {std::int64_t{0}, std::int64_t{-1}, INT64_MIN}) {
    regole_.grandi.top = nessuno;
    trovati = scan();
    EXPECT_EQ(trovati[0].items.size() + trovati[1].items.size(), 0U);
  }
  regole_.grandi.top = INT64_MAX;
  EXPECT_EQ(scan()[0].items.size(), 40U);
}

TEST_F(GrandiTest, AgeAndThresholdMayBeAnyNumber) {
  file("/casa/anna/sul-limite", 300, 30);
  file("/casa/anna/oltre", 300, 31);
  regole_.grandi.minAgeDays = 30;
  EXPECT_THAT(percorsi(scan()[1]), ElementsAre("/casa/anna/oltre"));
  regole_.grandi.minAgeDays = 0.5;
  EXPECT_THAT(scan()[1].note, ::testing::HasSubstr(" 0.5 giorni"));
  regole_.grandi.minAgeDays = 1e300;
  EXPECT_THAT(scan()[1].items, IsEmpty());
  for (const double tutto : {0.0, -5.0, std::nan("")}) {
    regole_.grandi.minSizeMb = tutto;
    EXPECT_EQ(scan()[0].items.size(), 2U) << tutto;
  }
  for (const double niente : {1e300, std::numeric_limits<double>::infinity()}) {
    regole_.grandi.minSizeMb = niente;
    EXPECT_THAT(scan()[0].items, IsEmpty()) << niente;
  }
}

TEST_F(GrandiTest, RootsOverlapAndExclusionsHold) {
  file("/casa/anna/Documents/a", 300);
  file("/casa/anna/.cache/b", 300);
  file("/casa/anna/Editor.app/c", 300);
  file("/casa/anna/e.app", 300);
  regole_.grandi.roots = {"~/Documents/", "~", "~/manca", "relativa", "~/e.app"};
  regole_.duplicati.excludeDirNames = {".cache"};
  regole_.duplicati.excludeBundleSuffixes = {".app"};
  regole_.duplicati.excludePaths = {"~/Documents"};
  EXPECT_THAT(percorsi(scan()[0]), ElementsAre("/casa/anna/Documents/a", "/casa/anna/e.app"));
  regole_.grandi.roots = {};
  EXPECT_THAT(scan()[0].items, IsEmpty());
}

TEST_F(GrandiTest, RefusedFoldersShrinkTheListAndAStopEndsTheScan) {
  file("/casa/anna/aperta/a", 300);
  file("/casa/anna/chiusa/b", 300);
  disco_.folder("/casa/anna/chiusa").refused = true;
  EXPECT_THAT(percorsi(scan()[0]), ElementsAre("/casa/anna/aperta/a"));
  EXPECT_EQ(contatore_.perRadice().size(), 1U);
  EXPECT_EQ(Denied::sharedCount(), 0) << "they are the section's alone";
  disco_.folder("/casa/anna").refused = true;
  EXPECT_THAT(scan()[0].items, IsEmpty());
  EXPECT_GT(contatore_.perRadice().at("~"), 0);
  EXPECT_EQ(nota_, "") << "there was a folder to look at";
  stop_ = [] { return true; };
  EXPECT_THROW(scan(), ScanCancelled);
}

TEST_F(GrandiTest, RootsAreRealPathsAndRemoteVolumesBelowThemAreNamed) {
  file("/dati/film/a", 300);
  file("/casa/anna/nas/b", 301);
  file("/casa/anna/usb/c", 302);
  file("/casa/anna/.cache/d", 303);
  disco_.link("/casa/anna/Video", "/dati/film");
  volumi_ = {{"/casa/anna/nas", "nfs4", 7, true},
             {"/casa/anna/usb", "ext4", 8, false},
             {"/altrove/nas", "fuse.sshfs", 9, true}};
  regole_.grandi.roots = {"~/Video", "/dati/film", "~/usb", "~", "~/.cache"};
  regole_.duplicati.excludeDirNames = {".cache"};
  const auto trovati = scan();
  EXPECT_THAT(percorsi(trovati[0]),
              ElementsAre("/casa/anna/.cache/d", "/casa/anna/usb/c", "/dati/film/a"));
  ASSERT_EQ(trovati[1].trattenuti.size(), 1U);
  EXPECT_EQ(trovati[1].trattenuti[0].percorso, "/casa/anna/nas");
  EXPECT_EQ(trovati[1].trattenuti[0].perche, "volume di rete o FUSE: non esaminato");
  regole_.grandi.roots = {"~/nas"};
  EXPECT_THAT(percorsi(scan()[0]), ElementsAre("/casa/anna/nas/b")) << "somebody named it";
}

TEST_F(GrandiTest, NothingToLookAtIsSaid) {
  file("/casa/anna/a", 300);
  regole_.grandi.roots = {"~/manca", "~/a"};
  EXPECT_EQ(scan().size(), 2U);
  EXPECT_EQ(nota_, "Nessuna cartella da esaminare.");
  regole_.guasto = "file delle regole illeggibile";
  EXPECT_THROW(scan(), std::runtime_error);
}

}  // namespace
}  // namespace pellak::scanners
