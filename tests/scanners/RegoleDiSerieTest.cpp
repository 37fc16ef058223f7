// The rules files the application ships with: what a wrong line in them could do to a user.
#include <algorithm>
#include <fstream>
#include <gmock/gmock.h>
#include <iterator>
#include <set>
#include <sstream>
#include <utility>

#include "PellakCore/Catalogo.h"
#include "PellakCore/Regole.h"
#include "PellakCore/base/BytePath.h"

namespace pellak {
namespace {

using ::testing::AnyOf;
using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

std::vector<std::string_view> idsDelCatalogo() {
  std::vector<std::string_view> ids;
  for (const Meta& meta : metas()) ids.insert(ids.end(), meta.cats.begin(), meta.cats.end());
  return ids;
}

/// Names that hold secrets at any depth.
const std::set<std::string> kSegreti = {
    "Keychains", "Mobile Documents", "CloudStorage",       "Accounts",
    ".ssh",      ".gnupg",           ".password-store",    ".pki",
    "keyrings",  "kwalletd",         "Web Data",           "key3.db",
    "key4.db",   "cert9.db",         "formhistory.sqlite", "wallet.dat"};

bool inUnSegreto(const std::string& luogo) {
  std::istringstream componenti(luogo);
  for (std::string nome; std::getline(componenti, nome, '/');) {
    if (kSegreti.contains(nome) || nome.starts_with("Login Data")) return true;
  }
  return false;
}

std::string cartellaDi(const std::string& modello) { return modello.substr(0, modello.rfind('/')); }

/// Every folder or path an entry takes candidates from, and whether it is a pattern's folder.
std::vector<std::string> luoghi(const RegolaCategoria& regola) {
  std::vector<std::string> tutti = regola.folders;
  if (!regola.childrenOf.empty()) tutti.push_back(regola.childrenOf);
  tutti.insert(tutti.end(), regola.paths.begin(), regola.paths.end());
  return tutti;
}

Result<Regole> leggiDiSerie(const std::string& nome) {
  std::ifstream file(PELLAK_ENGINE_RESOURCES "/" + nome, std::ios::binary);
  return leggiRegole(std::string{std::istreambuf_iterator<char>(file), {}});
}

class RegoleDiSerieTest : public ::testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    const Result<Regole> lette = leggiDiSerie(GetParam());
    ASSERT_TRUE(lette.ok()) << lette.error().text;
    regole_ = lette.value();
    ASSERT_THAT(regole_.categorie, Not(IsEmpty()));
  }

  Regole regole_;
};

TEST_P(RegoleDiSerieTest, EveryEntryIsCompleteAndShownOnceInASection) {
  const std::vector<std::string_view> catalogo = idsDelCatalogo();
  std::set<std::string> visti;
  for (const RegolaCategoria& regola : regole_.categorie) {
    SCOPED_TRACE(regola.id);
    EXPECT_TRUE(visti.insert(regola.id).second) << "twice";
    EXPECT_THAT(regola.name, Not(IsEmpty()));
    EXPECT_TRUE(regola.note.ends_with('.')) << regola.note;
    EXPECT_THAT(regola.mode, AnyOf("delete", "report"));
    // The note of what the page only lists says so, and no other note does.
    EXPECT_EQ(regola.mode == "report", regola.note.rfind("SOLO REPORT: ", 0) == 0);
    if (regola.section.empty()) {
      EXPECT_THAT(catalogo, Contains(regola.id));
    } else {
      EXPECT_THAT(catalogo, Not(Contains(regola.id)));
      EXPECT_NE(cercaMeta(regola.section), nullptr);
    }
    EXPECT_TRUE(!luoghi(regola).empty() || !regola.glob.empty()) << "lists nothing";
    // A name can only be kept back where it is listed by itself.
    EXPECT_TRUE(regola.except.empty() || luoghi(regola).size() > regola.paths.size());
  }
}

TEST_P(RegoleDiSerieTest, PlacesAreWellFormed) {
  for (const RegolaCategoria& regola : regole_.categorie) {
    SCOPED_TRACE(regola.id);
    std::vector<std::string> tutti = luoghi(regola);
    for (const std::string& modello : regola.glob) {
      const std::string_view ultimo = ultimoComponente(modello);
      EXPECT_THAT(std::string(ultimo), StartsWith("*.")) << modello;
      EXPECT_GT(ultimo.size(), 2U) << modello;
      EXPECT_EQ(ultimo.find_first_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ?[", 1), ultimo.npos) << modello;
      tutti.push_back(cartellaDi(modello));
    }
    for (const std::string& luogo : tutti) {
      EXPECT_EQ(standardizza(luogo, "/casa/anna"), espandiTilde(luogo, "/casa/anna")) << luogo;
      EXPECT_EQ(luogo.find('*'), luogo.npos) << luogo;
    }
  }
}

TEST_P(RegoleDiSerieTest, DeletableEntriesStayAwayFromDocumentsAndFromTheSystem) {
  static const char* const kDocumenti[] = {
      "~",        "~/Desktop",  "~/Documents", "~/Movies",    "~/Music",     "~/Pictures",
      "~/Public", "~/Videos",   "~/Templates", "~/Scrivania", "~/Documenti", "~/Immagini",
      "~/Musica", "~/Pubblici", "~/Video",     "~/Modelli",   "~/Downloads", "~/Scaricati"};
  for (const RegolaCategoria& regola : regole_.categorie) {
    if (regola.mode != "delete") continue;
    SCOPED_TRACE(regola.id);
    std::vector<std::string> tutti = luoghi(regola);
    for (const std::string& luogo : tutti) {
      EXPECT_THAT(luogo, StartsWith("~/"));
      EXPECT_FALSE(inUnSegreto(luogo)) << luogo;
      for (const std::string cartella : kDocumenti) {
        EXPECT_FALSE(dentroCartella(cartella, luogo)) << luogo;
        EXPECT_FALSE(cartella != "~" && dentroCartella(luogo, cartella)) << luogo;
      }
      // A whole folder of the home taken for a cache would take settings with it.
      EXPECT_TRUE(std::count(luogo.begin(), luogo.end(), '/') > 1 || luogo[2] == '.') << luogo;
    }
    for (const std::string& modello : regola.glob) {
      EXPECT_THAT(modello, StartsWith("~/"));
      EXPECT_FALSE(inUnSegreto(modello)) << modello;
    }
  }
}

TEST_P(RegoleDiSerieTest, NoPlaceIsCountedTwice) {
  std::vector<std::pair<std::string, std::string>> tutti;
  std::set<std::string> modelli;
  for (const RegolaCategoria& regola : regole_.categorie) {
    for (std::string& luogo : luoghi(regola)) tutti.emplace_back(std::move(luogo), regola.id);
    for (const std::string& modello : regola.glob) {
      EXPECT_TRUE(modelli.insert(modello).second) << modello;
    }
  }
  for (std::size_t i = 0; i < tutti.size(); ++i) {
    for (std::size_t j = 0; j < tutti.size(); ++j) {
      EXPECT_FALSE(i != j && dentroCartella(tutti[i].first, tutti[j].first))
          << tutti[i].first << " (" << tutti[i].second << ") lies in " << tutti[j].first << " ("
          << tutti[j].second << ")";
    }
    for (const std::string& modello : modelli) {
      EXPECT_FALSE(dentroCartella(cartellaDi(modello), tutti[i].first)) << modello;
    }
  }
}

TEST_P(RegoleDiSerieTest, DuplicatesAndLargeFilesHaveTheirRoots) {
  const RegoleDuplicati& duplicati = regole_.duplicati;
  EXPECT_THAT(duplicati.excludeDirNames, Contains("node_modules"));
  EXPECT_THAT(duplicati.excludeBundleSuffixes, Contains(".app"));
  for (const std::vector<std::string>* radici :
       {&duplicati.roots, &std::as_const(regole_.grandi.roots)}) {
    EXPECT_THAT(*radici, Not(IsEmpty()));
    for (const std::string& radice : *radici) {
      EXPECT_EQ(std::count(radici->begin(), radici->end(), radice), 1) << radice;
      EXPECT_THAT(duplicati.excludeDirNames, Not(Contains(std::string(ultimoComponente(radice)))));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Serie, RegoleDiSerieTest,
                         ::testing::Values("rules.json", "rules.linux.json"),
                         [](const auto& scelta) {
                           return std::string(scelta.param) == "rules.json" ? "macos" : "linux";
                         });

class RegoleDeiDueSistemiTest : public ::testing::Test {
 protected:
  const Regole macos_ = leggiDiSerie("rules.json").value();
  const Regole linux_ = leggiDiSerie("rules.linux.json").value();
};

TEST_F(RegoleDeiDueSistemiTest, MacosHoldsTheWholeCatalogueInItsOrder) {
  std::vector<std::string_view> ids;
  for (const RegolaCategoria& regola : macos_.categorie) {
    if (regola.section.empty()) ids.push_back(regola.id);
  }
  EXPECT_EQ(ids, idsDelCatalogo());
}

TEST_F(RegoleDeiDueSistemiTest, TheSameToolsAndPackagesAreKnown) {
  EXPECT_EQ(macos_.duplicati.excludeBundleSuffixes, linux_.duplicati.excludeBundleSuffixes);
  for (const RegolaCategoria& regola : linux_.categorie) {
    // The output of this one lies outside the home on macOS, in a folder named after the user.
    if (regola.section != "sviluppo" || regola.id == "bazel-output") continue;
    const RegolaCategoria* altra = macos_.cerca(regola.id);
    ASSERT_NE(altra, nullptr) << regola.id;
    EXPECT_EQ(altra->mode, regola.mode) << regola.id;
  }
}

// What does not come back by itself, or is the system's, is never offered for deletion.
TEST_F(RegoleDeiDueSistemiTest, TheIrreplaceableIsOnlyListed) {
  const std::vector<std::pair<const Regole*, std::vector<std::string>>> soloReport = {
      {&macos_,
       {"xcode-archives", "coresimulator-devices", "simulator-runtimes", "trash", "ios-backups"}},
      {&linux_,
       {"maven-repository", "ide-caches", "ai-models", "downloaded-programs", "trash", "journals",
        "snap-revisions", "aur-helpers"}}};
  for (const auto& [regole, ids] : soloReport) {
    for (const std::string& id : ids) {
      const RegolaCategoria* regola = regole->cerca(id);
      ASSERT_NE(regola, nullptr) << id;
      EXPECT_EQ(regola->mode, "report") << id;
    }
  }
}

}  // namespace
}  // namespace pellak
