#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "PellakCore/Config.h"
#include "PellakCore/Regole.h"
#include "PellakCore/base/Json.h"

namespace pellak {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

Regole lette(std::string_view testo) {
  const Result<Regole> regole = leggiRegole(testo);
  EXPECT_TRUE(regole.ok()) << testo;
  return regole ? regole.value() : Regole{};
}

TEST(RegoleTest, ReadsEveryKeyOfACategory) {
  const Regole regole = lette(R"({"categories": [{
      "id": "prova", "name": "Prova", "mode": "delete", "note": "Nota", "min_age_days": 2.5,
      "children_of": "~/a", "folders": ["/b", "~/c"], "paths": ["~/d"], "glob": ["~/e/*.f"],
      "section": "pulizia"}]})");
  ASSERT_EQ(regole.categorie.size(), 1U);
  const RegolaCategoria* regola = regole.cerca("prova");
  ASSERT_NE(regola, nullptr);
  EXPECT_EQ(regola->name, "Prova");
  EXPECT_EQ(regola->mode, "delete");
  EXPECT_EQ(regola->note, "Nota");
  EXPECT_EQ(regola->minAgeDays, 2.5);
  EXPECT_EQ(regola->childrenOf, "~/a");
  EXPECT_THAT(regola->folders, ElementsAre("/b", "~/c"));
  EXPECT_THAT(regola->paths, ElementsAre("~/d"));
  EXPECT_THAT(regola->glob, ElementsAre("~/e/*.f"));
  EXPECT_EQ(regola->section, "pulizia");
  EXPECT_EQ(regole.cerca("altra"), nullptr);
}

TEST(RegoleTest, WrongTypesCountAsAbsentAndNothingBecomesDeletable) {
  const Regole regole = lette(R"({"categories": [
      {"id": 1, "name": null, "mode": true, "note": [], "min_age_days": "30",
       "children_of": ["~/a"], "folders": "~/b", "paths": {"p": "~/c"}, "glob": "~/d/*.e",
       "section": 7},
      "testo", 3, null, ["lista"],
      {"glob": ["~/a/*.b", 5, null, ["~/c/*.d"], "~/e/*.f"], "min_age_days": true}]})");
  ASSERT_EQ(regole.categorie.size(), 2U);
  const RegolaCategoria& prima = regole.categorie[0];
  EXPECT_EQ(prima.id + prima.name + prima.note + prima.childrenOf + prima.section, "");
  EXPECT_EQ(prima.mode, "report");
  EXPECT_EQ(prima.minAgeDays, 0);
  EXPECT_THAT(prima.folders, IsEmpty());
  EXPECT_THAT(prima.paths, IsEmpty());
  EXPECT_THAT(prima.glob, IsEmpty());
  EXPECT_THAT(regole.categorie[1].glob, ElementsAre("~/a/*.b", "~/e/*.f"));
  EXPECT_EQ(regole.categorie[1].minAgeDays, 0);
}

TEST(RegoleTest, TheListsOfFilesHaveTheirDefaults) {
  for (const char* testo :
       {"{}", R"({"categories": {}, "duplicates": [], "large_old": "testo"})",
        R"({"duplicates": {"min_size_mb": "5", "roots": "~"}, "large_old": {"top": 2.5}})"}) {
    const Regole regole = lette(testo);
    EXPECT_THAT(regole.categorie, IsEmpty());
    EXPECT_EQ(regole.duplicati.minSizeMb, 5) << testo;
    EXPECT_THAT(regole.duplicati.roots, IsEmpty());
    EXPECT_EQ(regole.grandi.minSizeMb, 200) << testo;
    EXPECT_EQ(regole.grandi.minAgeDays, 180) << testo;
    EXPECT_EQ(regole.grandi.top, 25) << testo;
  }
  const Regole piene = lette(R"({
      "duplicates": {"min_size_mb": 9, "roots": ["~/a"], "exclude_dir_names": ["b"],
                     "exclude_bundle_suffixes": [".c"], "exclude_paths": ["~/d"]},
      "large_old": {"min_size_mb": 1.5, "min_age_days": 3, "roots": ["~"], "top": 4}})");
  EXPECT_EQ(piene.duplicati.minSizeMb, 9);
  EXPECT_THAT(piene.duplicati.roots, ElementsAre("~/a"));
  EXPECT_THAT(piene.duplicati.excludeDirNames, ElementsAre("b"));
  EXPECT_THAT(piene.duplicati.excludeBundleSuffixes, ElementsAre(".c"));
  EXPECT_THAT(piene.duplicati.excludePaths, ElementsAre("~/d"));
  EXPECT_EQ(piene.grandi.minSizeMb, 1.5);
  EXPECT_EQ(piene.grandi.minAgeDays, 3);
  EXPECT_EQ(piene.grandi.top, 4);
}

TEST(RegoleTest, OnlyAnObjectIsARulesDocument) {
  for (const char* testo : {"", "null", "[]", "\"{}\"", "{", "{}x", R"({"categories": [})"}) {
    const Result<Regole> regole = leggiRegole(testo);
    ASSERT_FALSE(regole.ok()) << testo;
    EXPECT_EQ(regole.error().kind, ErrorKind::invalid);
  }
}

TEST(RegoleTest, SettingsAreWrittenOver) {
  const auto documento = JsonDocument::parse(
      R"({"dup_min_mb": 12, "dup_exclude": ["/mio"], "large_min_mb": 70, "large_age_days": 40,
          "installer_age_days": 0})");
  ASSERT_TRUE(documento.ok());
  const Regole regole =
      conImpostazioni(lette(R"({"categories": [{"id": "old-installers", "min_age_days": 9},
                               {"id": "app-logs", "min_age_days": 30}],
                "duplicates": {"min_size_mb": 1, "roots": ["~"], "exclude_paths": ["/altro"]},
                "large_old": {"min_size_mb": 1, "min_age_days": 1, "top": 3}})"),
                      Config::daJson(documento->radice()));
  EXPECT_EQ(regole.cerca("old-installers")->minAgeDays, 0);
  EXPECT_EQ(regole.cerca("app-logs")->minAgeDays, 30);
  EXPECT_EQ(regole.duplicati.minSizeMb, 12);
  EXPECT_THAT(regole.duplicati.excludePaths, ElementsAre("/mio"));
  EXPECT_THAT(regole.duplicati.roots, ElementsAre("~"));
  EXPECT_EQ(regole.grandi.minSizeMb, 70);
  EXPECT_EQ(regole.grandi.minAgeDays, 40);
  EXPECT_EQ(regole.grandi.top, 3);
}

}  // namespace
}  // namespace pellak
