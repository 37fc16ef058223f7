#include <gmock/gmock.h>
#include <tuple>

#include "PellakCore/CartelleUtente.h"
#include "PellakCore/Regole.h"

namespace pellak {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

Regole lette(std::string_view testo) {
  const Result<Regole> regole = leggiRegole(testo);
  EXPECT_TRUE(regole.ok()) << testo;
  return regole ? regole.value() : Regole{};
}

TEST(RegoleTest, WrongTypesCountAsAbsentAndNothingBecomesDeletable) {
  const Regole regole = lette(R"({"categories": [
      {"id": 1, "name": null, "mode": true, "note": [], "min_age_days": "30",
       "children_of": ["~/a"], "folders": "~/b", "paths": {"p": "~/c"}, "glob": "~/d/*.e",
       "section": 7, "except": "x"},
      "testo", 3, null, ["lista"],
      {"glob": ["~/a/*.b", 5, null, ["~/c/*.d"], "~/e/*.f"], "min_age_days": true,
       "except": ["f", 1, "g*"]}]})");
  ASSERT_EQ(regole.categorie.size(), 2U);
  const RegolaCategoria& prima = regole.categorie[0];
  EXPECT_EQ(prima.id + prima.name + prima.note + prima.childrenOf + prima.section, "");
  EXPECT_EQ(prima.mode, "report");
  EXPECT_EQ(prima.minAgeDays, 0);
  EXPECT_THAT(prima.folders, IsEmpty());
  EXPECT_THAT(prima.paths, IsEmpty());
  EXPECT_THAT(prima.glob, IsEmpty());
  EXPECT_THAT(prima.except, IsEmpty());
  EXPECT_THAT(regole.categorie[1].except, ElementsAre("f", "g*"));
  EXPECT_THAT(regole.categorie[1].glob, ElementsAre("~/a/*.b", "~/e/*.f"));
  EXPECT_EQ(regole.categorie[1].minAgeDays, 0);
}

TEST(RegoleTest, TheListsOfFilesHaveTheirDefaults) {
  const auto elenchi = [](const Regole& r) {
    const RegoleDuplicati& d = r.duplicati;
    return std::tuple(d.minSizeMb, d.roots, d.excludeDirNames, d.excludeBundleSuffixes,
                      d.excludePaths, r.grandi.minSizeMb, r.grandi.minAgeDays, r.grandi.roots,
                      r.grandi.top);
  };
  using Testi = std::vector<std::string>;
  for (const char* testo :
       {"{}", R"({"categories": {}, "duplicates": [], "large_old": "testo"})",
        R"({"duplicates": {"min_size_mb": "5", "roots": "~"}, "large_old": {"top": 2.5}})"}) {
    EXPECT_THAT(lette(testo).categorie, IsEmpty());
    EXPECT_EQ(elenchi(lette(testo)),
              std::tuple(5, Testi(), Testi(), Testi(), Testi(), 200, 180, Testi(), 25))
        << testo;
  }
  EXPECT_EQ(
      elenchi(lette(R"({
      "duplicates": {"min_size_mb": 9, "roots": ["~/a"], "exclude_dir_names": ["b"],
                     "exclude_bundle_suffixes": [".c"], "exclude_paths": ["~/d"]},
      "large_old": {"min_size_mb": 1.5, "min_age_days": 3, "roots": ["~"], "top": 4}})")),
      std::tuple(9, Testi{"~/a"}, Testi{"b"}, Testi{".c"}, Testi{"~/d"}, 1.5, 3, Testi{"~"}, 4));
}

TEST(RegoleTest, UserFoldersMovePlacesAndRoots) {
  const auto spostamenti = leggiCartelleUtente(
      "# XDG_MUSIC_DIR=\"/no\"\nXDG_DOWNLOAD_DIR=\"$HOME/prima\"\n"
      " XDG_DOWNLOAD_DIR = \"$HOME/Scaricati \\\"qui\\\"/\" \r\nXDG_DOCUMENTS_DIR=\"$HOME/\"\n"
      "XDG_PICTURES_DIR=\"/foto/mie\"\nXDG_VIDEOS_DIR=relativa\nXDG_MUSIC_DIR=\"rotta\n"
      "XDG_BOH_DIR=\"/x\"\nXDG_DIR=\"/x\"\n=\nXDG_DESKTOP_DIR=\"$HOMEX/a\"",
      "/h");
  Regole regole;
  regole.categorie.resize(1);
  regole.categorie[0].glob = {"~/Downloads/*.iso", "~/Downloadsx/*.a"};
  regole.duplicati.roots = {"~/Documents", "~/Pictures/2020", "~/Videos", "~"};
  regole.grandi.roots = {"~/Downloads"};
  regole = conSpostamenti(regole, spostamenti);
  EXPECT_THAT(regole.categorie[0].glob,
              ElementsAre("/h/Scaricati \"qui\"/*.iso", "~/Downloadsx/*.a"));
  EXPECT_THAT(regole.duplicati.roots,
              ElementsAre("~/Documents", "/foto/mie/2020", "~/Videos", "~"));
  EXPECT_THAT(regole.grandi.roots, ElementsAre("/h/Scaricati \"qui\""));
}

TEST(RegoleTest, OnlyAnObjectIsARulesDocument) {
  for (const char* testo : {"", "null", "[]", "\"{}\"", "{", "{}x", R"({"categories": [})"}) {
    const Result<Regole> regole = leggiRegole(testo);
    ASSERT_FALSE(regole.ok()) << testo;
    EXPECT_EQ(regole.error().kind, ErrorKind::invalid);
  }
}

}  // namespace
}  // namespace pellak
