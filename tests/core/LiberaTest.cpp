#include <gtest/gtest.h>

#include "PellakCore/Libera.h"

namespace pellak {
namespace {

Finding conVoci(std::vector<Voce> voci) {
  Finding finding;
  finding.mode = "delete";
  finding.items = std::move(voci);
  return finding;
}

Finding duplicati(const std::vector<std::pair<std::string, std::int64_t>>& copie) {
  Finding finding = conVoci({});
  finding.id = "duplicates";
  Group& gruppo = finding.groups.emplace_back();
  gruppo.size = 1'000'000;
  std::vector<std::int64_t> libere;
  for (const auto& [percorso, byte] : copie) {
    gruppo.paths.push_back(percorso);
    libere.push_back(byte);
  }
  gruppo.libere = Libere(libere);
  return finding;
}

std::int64_t insieme(std::vector<Finding> una, std::vector<Finding> altra) {
  const std::vector<const std::vector<Finding>*> liste = {&una, &altra};
  return libera(liste);
}

TEST(Libera, WhatOtherNamesHoldAndWhatIsOnlyReportedIsNotFreed) {
  Finding finding = conVoci({{"/a", 100, 0}, {"/b", 50, 0, 0, {}, 30}});
  EXPECT_EQ(libera(finding), 120);
  finding.mode = "report";
  EXPECT_EQ(libera(finding), 0);
  EXPECT_EQ(insieme({finding}, {conVoci({{"/c", 1, 0}})}), 1);
  Finding app = conVoci({{"/app", 100, 0}});
  app.id = "apps";
  EXPECT_EQ(libera(app), 100);
  EXPECT_EQ(insieme({app}, {}), 0) << "applications are there to be used";
}

TEST(Libera, APathInTwoListsOrBelowAnotherCountsOnce) {
  const Finding cache = conVoci({{"/c/pip", 100, 0}, {"/c/x", 10, 0}});
  EXPECT_EQ(insieme({cache}, {conVoci({{"/c/x", 10, 0}, {"/c/xy", 1, 0}})}), 111);
  EXPECT_EQ(insieme({conVoci({{"/c/pip/wheels/a", 60, 0}})}, {cache}), 110);
  EXPECT_EQ(libera(conVoci({{"/c/pip/w", 60, 0}, {"/c/pip", 100, 0}, {"/c/p", 1, 0}})), 101);
}

TEST(Libera, OfADuplicateSetTheCopyThatFreesMostMayStay) {
  const Finding copie = duplicati({{"/a", 10}, {"/b", 0}, {"/c", 7}});
  EXPECT_EQ(libera(copie), 7);
  // A copy that goes with another list leaves the rest of the set a copy still.
  EXPECT_EQ(insieme({copie}, {conVoci({{"/a", 10, 0}})}), 10);
  EXPECT_EQ(
      insieme({duplicati({{"/d/a", 10}, {"/d/b", 10}, {"/c", 10}})}, {conVoci({{"/d", 40, 0}})}),
      40);
  Finding vecchi = copie;
  vecchi.groups[0].libere = {};
  EXPECT_EQ(libera(vecchi), 0) << "not known";
}

TEST(Libera, SectionsAreCountedAgainWhenTheirFindingsMove) {
  Sec una;
  Sec altra;
  una.findings = {conVoci({{"/a", 5, 0}})};
  altra.findings = una.findings;
  LiberaSezioni conto;
  const std::vector<const Sec*> tutte = {&una, &altra};
  EXPECT_EQ(conto.sezione("una", una).libera + conto.sezione("altra", altra).libera, 10);
  EXPECT_EQ(conto.tutte(tutte), 5);
  altra.findings[0].items[0].path = "/b";
  ++altra.findingsVer;
  EXPECT_EQ(conto.tutte(tutte), 10);
  una.findings.clear();
  ++una.findingsVer;
  EXPECT_EQ(conto.sezione("una", una).totale, 0);
}

}  // namespace
}  // namespace pellak
