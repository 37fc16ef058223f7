#include <algorithm>
#include <atomic>
#include <cmath>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <limits>

#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/ScanCancelled.h"
#include "fakes/FakeClock.h"
#include "fakes/MemoryLister.h"
#include "scanners/regole/ScannerRegole.h"

namespace pellak::scanners {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr double kOra = 1'700'000'000;
constexpr std::int64_t kGiorno = 86'400;

class ScannerRegoleTest : public ::testing::Test {
 protected:
  void file(const std::string& percorso, std::int64_t blocchi, std::int64_t eta = 0) {
    disco_.file(percorso, blocchi * 4096).attributes.mtime = static_cast<std::int64_t>(kOra) - eta;
  }

  Finding scan(const RegolaCategoria& regola) {
    const ScanContext ctx{regole_,    impostazioni_, "/casa/anna", stop_,  {},
                          contatore_, disco_,        clock_,       volumi_};
    return scanRegola(ctx, regola);
  }

  std::vector<std::string> percorsi(const RegolaCategoria& regola) {
    std::vector<std::string> elenco;
    for (const Voce& voce : scan(regola).items) elenco.push_back(voce.path);
    return elenco;
  }

  fakes::MemoryLister disco_;
  fakes::FakeClock clock_{kOra};
  Contatore contatore_{"/casa/anna", true};
  std::function<bool()> stop_;
  std::vector<Mount> volumi_;

 private:
  const Regole regole_{};
  const Config impostazioni_{};
};

TEST_F(ScannerRegoleTest, MeasuresTheChildrenLargestFirst) {
  file("/casa/anna/c/piccolo", 1, 50);
  file("/casa/anna/c/cartella/sotto/a", 5);
  file("/casa/anna/c/cartella/b", 2);
  file("/casa/anna/c/altro", 1);
  file("/casa/anna/c/zero", 0);
  disco_.hardLink("/casa/anna/fuori", "/casa/anna/c/cartella/b");
  disco_.folder("/casa/anna/c/vuota");
  disco_.link("/casa/anna/c/collegamento");
  RegolaCategoria regola;
  regola.mode = "delete";
  regola.childrenOf = "~/c/";
  const Finding finding = scan(regola);
  EXPECT_EQ(finding.mode, "delete");
  // Equal sizes stay in the order in which the folder lists them.
  ASSERT_EQ(finding.items.size(), 3U);
  EXPECT_EQ(finding.items[0].path, "/casa/anna/c/cartella");
  EXPECT_EQ(finding.items[0].size, 7 * 4096);
  EXPECT_EQ(finding.items[1].path, "/casa/anna/c/altro");
  EXPECT_EQ(finding.items[2].path, "/casa/anna/c/piccolo");
  EXPECT_EQ(finding.items[2].size, 4096);
  EXPECT_EQ(finding.items[2].mtime, kOra - 50);
  EXPECT_EQ(finding.items[2].identita.inode, disco_.attributes("/casa/anna/c/piccolo")->ino);
  EXPECT_EQ(finding.items[2].identita.mtimeNs,
            (static_cast<std::int64_t>(kOra) - 50) * 1'000'000'000);
  EXPECT_EQ(finding.items[2].identita.type, EntryType::regular);
  EXPECT_EQ(finding.items[0].libera(), 5 * 4096) << "/casa/anna/fuori is the file's other name";
  EXPECT_EQ(finding.items[1].libera(), 4096);
  EXPECT_EQ(contatore_.n(), 0);
}

TEST_F(ScannerRegoleTest, APlaceThatIsNoFolderContributesNothing) {
  file("/casa/anna/vero/a", 1);
  disco_.link("/casa/anna/collegamento");
  file("/casa/anna/file", 1);
  for (const char* luogo : {"~/collegamento", "~/file", "~/manca", "", "relativo", "~anna"}) {
    RegolaCategoria regola;
    regola.childrenOf = luogo;
    regola.folders = {luogo};
    EXPECT_THAT(percorsi(regola), IsEmpty()) << luogo;
  }
  EXPECT_THAT(percorsi({}), IsEmpty());
  EXPECT_EQ(contatore_.n(), 0);
}

TEST_F(ScannerRegoleTest, LinksAboveAPlaceAreFollowedAndRealPathsListed) {
  file("/ssd/cache/pip/a", 1);
  file("/ssd/scaricati/b.iso", 2);
  disco_.link("/casa/anna/.cache", "/ssd/cache");
  disco_.link("/casa/anna/Downloads", "/ssd/scaricati");
  disco_.link("/ssd/cache/altrove", "/ssd/scaricati");
  RegolaCategoria regola;
  regola.childrenOf = "~/.cache/pip";
  regola.folders = {"~/.cache", "~/.cache/altrove", "~/Downloads"};
  regola.paths = {"~/.cache/pip", "~/Downloads"};
  regola.glob = {"~/Downloads/*.iso"};
  EXPECT_THAT(percorsi(regola),
              ElementsAre("/ssd/scaricati/b.iso", "/ssd/cache/pip/a", "/ssd/cache/pip"));
}

TEST_F(ScannerRegoleTest, RemoteVolumesAreNeitherReadNorListedButNamed) {
  file("/casa/anna/c/nas/a", 5);
  file("/casa/anna/c/x/sotto/gvfs/b", 7);
  file("/casa/anna/c/x/sotto/c", 1);
  volumi_ = {{"/casa/anna/c/nas", "cifs", 1, true}, {"/casa/anna/c/x/sotto/gvfs", "fuse", 2, true}};
  disco_.perRecord = [](const std::string& percorso) -> Result<void> {
    EXPECT_NE(percorso, "/casa/anna/c/nas") << "a volume that hangs must not be asked anything";
    return {};
  };
  RegolaCategoria regola;
  regola.childrenOf = "~/c";
  const Finding finding = scan(regola);
  ASSERT_EQ(finding.items.size(), 1U);
  EXPECT_EQ(finding.items[0].size, 4096);
  ASSERT_EQ(finding.trattenuti.size(), 2U);
  EXPECT_EQ(finding.trattenuti[1].percorso, "/casa/anna/c/x/sotto/gvfs");
  regola.mode = "delete";
  const Finding offerto = scan(regola);
  EXPECT_THAT(offerto.items, IsEmpty()) << "a folder that holds a volume can't be moved";
  EXPECT_EQ(offerto.trattenuti.at(0).percorso, "/casa/anna/c/x");
  volumi_[1] = {"/casa/anna/c/x", "tmpfs", 3, false};
  EXPECT_EQ(scan(regola).trattenuti.at(0).perche,
            "è un altro disco: smontalo per poterlo spostare");
}

TEST_F(ScannerRegoleTest, PatternsMatchTheLowerCasedName) {
  for (const char* nome :
       {"Setup.DMG", "setup.dmg", "dmg", "a.dmg.zip", ".dmg", "x.tar.GZ", "\xFF\xC3.img"}) {
    file(std::string("/casa/anna/Downloads/") + nome, 1);
  }
  file("/radice.pkg", 1);
  RegolaCategoria regola;
  regola.glob = {"~/Downloads/*.dmg"};
  EXPECT_THAT(percorsi(regola),
              UnorderedElementsAre("/casa/anna/Downloads/Setup.DMG",
                                   "/casa/anna/Downloads/setup.dmg", "/casa/anna/Downloads/.dmg"));
  regola.glob = {
      "~/Downloads/*.DMG", "~/Downloads/setup.dmg", "~/Downloads/s*.dmg", "~/Downloads/*", "*.dmg",
      "~/Manca/*.dmg"};
  EXPECT_THAT(percorsi(regola), IsEmpty());
  regola.glob = {"~/Downloads/*.tar.gz", "/*.pkg", "~/Downloads/*.img"};
  EXPECT_THAT(percorsi(regola), ElementsAre("/casa/anna/Downloads/x.tar.GZ", "/radice.pkg",
                                            "/casa/anna/Downloads/\xFF\xC3.img"));
}

TEST_F(ScannerRegoleTest, EverythingOfAnEntryJoinsInOrderAndOnce) {
  file("/casa/anna/a/uno.log", 1);
  file("/casa/anna/b/due.log", 1);
  file("/casa/anna/c/tre", 1);
  RegolaCategoria regola;
  regola.childrenOf = "~/b";
  regola.folders = {"~/a", "~/b", "~/a/"};
  regola.paths = {"~/c/", "~/a/uno.log", "~/c", "~/manca"};
  regola.glob = {"~/a/*.log", "~/b/*.log"};
  EXPECT_THAT(percorsi(regola),
              ElementsAre("/casa/anna/b/due.log", "/casa/anna/a/uno.log", "/casa/anna/c"));
}

TEST_F(ScannerRegoleTest, ExceptedNamesAreLeftAloneWhicheverKeyFindsThem) {
  for (const char* nome : {"fuzz", "mcp-a", "a-mcp-b", "MCP-x", "aXbXc", "aXb", "b.log"}) {
    file(std::string("/casa/anna/c/") + nome + "/dato", 1);
  }
  RegolaCategoria regola;
  regola.childrenOf = "~/c";
  regola.except = {"FUZZ", "mcp-*", "a*x*c", "", "/c", "b.*og*"};
  EXPECT_THAT(percorsi(regola), UnorderedElementsAre("/casa/anna/c/a-mcp-b", "/casa/anna/c/aXb"));
  regola.childrenOf.clear();
  regola.paths = {"~/c/fuzz", "~/c"};
  regola.glob = {"~/c/*.log"};
  EXPECT_THAT(percorsi(regola), ElementsAre("/casa/anna/c"));
  regola.except = {"**"};
  EXPECT_THAT(percorsi(regola), IsEmpty());
}

TEST_F(ScannerRegoleTest, TheAgeLimitKeepsWhatLiesExactlyOnIt) {
  file("/casa/anna/c/sul-limite", 1, 30 * kGiorno);
  file("/casa/anna/c/un-secondo-dopo", 1, 30 * kGiorno - 1);
  file("/casa/anna/c/vecchio", 1, 31 * kGiorno);
  file("/casa/anna/c/dal-futuro", 1, -kGiorno);
  RegolaCategoria regola;
  regola.childrenOf = "~/c";
  regola.minAgeDays = 30;
  EXPECT_THAT(percorsi(regola),
              UnorderedElementsAre("/casa/anna/c/sul-limite", "/casa/anna/c/vecchio"));
  for (const double nessuna : {0.0, -1.0, -1e300, std::nan("")}) {
    regola.minAgeDays = nessuna;
    EXPECT_EQ(percorsi(regola).size(), 4U) << nessuna;
  }
  for (const double eterna : {1e300, std::numeric_limits<double>::infinity()}) {
    regola.minAgeDays = eterna;
    EXPECT_THAT(percorsi(regola), IsEmpty()) << eterna;
  }
}

TEST_F(ScannerRegoleTest, OnlyRefusalsAreCounted) {
  for (const char* nome : {"buono", "negato", "sparito", "guasto"}) {
    file(std::string("/casa/anna/c/") + nome, 1);
  }
  disco_.perRecord = [](const std::string& percorso) -> Result<void> {
    if (percorso.ends_with("negato")) return Error{ErrorKind::denied, 1, "no"};
    if (percorso.ends_with("sparito")) return Error{ErrorKind::missing, 1, "no"};
    if (percorso.ends_with("guasto")) return Error{ErrorKind::failed, 1, "no"};
    return {};
  };
  RegolaCategoria regola;
  regola.childrenOf = "~/c";
  EXPECT_THAT(percorsi(regola), ElementsAre("/casa/anna/c/buono"));
  EXPECT_THAT(contatore_.percorsi(), ElementsAre("/casa/anna/c/negato"));
}

TEST_F(ScannerRegoleTest, RefusalsInsideAndOfTheFolderItselfBelongToTheSection) {
  file("/casa/anna/c/x/leggibile", 2);
  file("/casa/anna/c/x/chiusa/nascosto", 9);
  disco_.folder("/casa/anna/c/x/chiusa").refused = true;
  RegolaCategoria regola;
  regola.childrenOf = "~/c";
  const Finding finding = scan(regola);
  ASSERT_EQ(finding.items.size(), 1U);
  EXPECT_EQ(finding.items[0].size, 2 * 4096);
  EXPECT_THAT(contatore_.percorsi(), ::testing::Contains("/casa/anna/c/x/chiusa"));

  contatore_.reset();
  disco_.folder("/casa/anna/c").refused = true;
  EXPECT_THAT(percorsi(regola), IsEmpty());
  EXPECT_THAT(contatore_.percorsi(), ElementsAre("/casa/anna/c"));
}

TEST_F(ScannerRegoleTest, AStopAtAnyMomentEndsTheScan) {
  for (int i = 0; i < 20; ++i) {
    file("/casa/anna/c/" + std::to_string(i) + "/sotto/dato", 1);
  }
  RegolaCategoria regola;
  regola.childrenOf = "~/c";
  std::atomic<int> domande{0};
  stop_ = [&] { return ++domande < 0; };
  EXPECT_EQ(percorsi(regola).size(), 20U);
  const int tutte = domande;
  // Once for each candidate, once for each folder that is measured.
  EXPECT_EQ(tutte, 20 + 40);
  for (const int ultima : {1, 20, 21, tutte}) {
    domande = 0;
    stop_ = [&] { return ++domande >= ultima; };
    EXPECT_THROW(scan(regola), ScanCancelled) << ultima;
  }
}

// Logins, settings and installed things that lie beside or inside what the shipped rules offer.
// "C" stands for the folder of caches, "P" for pnpm's.
TEST_F(ScannerRegoleTest, TheShippedRulesLeaveAloneWhatIsNoCache) {
  const std::vector<std::string> mai = {
      "C/ms-playwright/mcp-a1/Cookies", "~/.cache/selenium/se-config.toml",
      "C/Cypress/cy/Cookies",           "C/Coursier/jvm/bin/java",
      "C/coursier/arc/bin/java",        "P/store/v10/links/nome/index.js",
      "P/global/5/nome/index.js",       "C/go-build/fuzz/FuzzX/0a",
      "~/.ccache/ccache.conf",          "C/pypoetry/virtualenvs/a/bin/python",
      "C/deno/location_data/a",         "~/.pub-cache/bin/a",
      "~/.pub-cache/credentials.json",  "~/.cache/huggingface/token",
      "~/.cache/paru/clone/a/PKGBUILD"};
  const std::vector<std::string> si = {"C/ms-playwright/chromium-12/chrome",
                                       "~/.cache/selenium/chromedriver/a",
                                       "C/Cypress/15.0/a",
                                       "P/store/v10/files/00/a",
                                       "C/go-build/00/a-d",
                                       "~/.ccache/a/b",
                                       "C/pypoetry/artifacts/a",
                                       "C/deno/npm/a",
                                       "~/.pub-cache/hosted/a"};
  for (const bool mac : {true, false}) {
    const std::string casa = "/casa/anna";
    const auto luogo = [&](const std::string& scritto) {
      const std::string cache = mac ? "/Library/Caches" : "/.cache";
      const std::string pnpm = mac ? "/Library/pnpm" : "/.local/share/pnpm";
      const char prima = scritto.front();
      return casa + (prima == 'C' ? cache : prima == 'P' ? pnpm : "") + scritto.substr(1);
    };
    for (const auto* elenco : {&mai, &si}) {
      for (const std::string& scritto : *elenco) file(luogo(scritto), 1);
    }
    std::ifstream testo(PELLAK_ENGINE_RESOURCES + std::string(mac ? "/rules" : "/rules.linux") +
                        ".json");
    const auto regole = leggiRegole(std::string{std::istreambuf_iterator<char>(testo), {}});
    ASSERT_TRUE(regole.ok());
    std::vector<std::string> offerti;
    for (const RegolaCategoria& regola : regole->categorie) {
      if (regola.mode != "delete") continue;
      for (std::string& percorso : percorsi(regola)) offerti.push_back(std::move(percorso));
    }
    const auto offerto = [&](const std::string& scritto) {
      return std::any_of(offerti.begin(), offerti.end(), [&](const std::string& percorso) {
        return dentroCartella(luogo(scritto), percorso);
      });
    };
    for (const std::string& scritto : mai) EXPECT_FALSE(offerto(scritto)) << mac << scritto;
    for (const std::string& scritto : si) EXPECT_TRUE(offerto(scritto)) << mac << scritto;
  }
}

}  // namespace
}  // namespace pellak::scanners
