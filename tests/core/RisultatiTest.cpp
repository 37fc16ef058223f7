#include <gtest/gtest.h>
#include <tuple>

#include "PellakCore/Catalogo.h"
#include "PellakCore/Risultati.h"

namespace pellak {
namespace {

Sezioni vuote() {
  Sezioni sezioni;
  for (const Meta& meta : metas()) sezioni.emplace(meta.id, Sec());
  return sezioni;
}

Sezioni piene() {
  Sezioni sezioni = vuote();
  Sec& sviluppo = sezioni.find("sviluppo")->second;
  sviluppo.scanned = true;
  sviluppo.lastScan = 1'700'000'000.25;
  sviluppo.status = "Recuperabili 1.0 KiB.";
  sviluppo.denied = 3;
  sviluppo.deniedTop = {{"~/Library/Mail", 3}};
  Finding finding;
  finding.id = "npm-cache";
  finding.mode = "delete";
  finding.kind = "k";
  finding.hint = "h";
  finding.unmeasured = true;
  const Identita identita{UINT64_MAX, 5, -6, EntryType::other, 9};
  finding.items = {{"/h/strano\n\xFF\xEE\xBE\x80", 1024, 1'600'000'000, 1000, identita, 24},
                   {"/v"}};
  // Every member, in order.
  Group copie{7, {"/x", "/y"}, {identita, {}}, {}, true, {}, Libere({1, 2})};
  copie.hash.fill(0xab);
  Group app{8, {"/x", "/y"}, {}, {}, false, {}, Libere({3, 3})};
  app.scheda.scrivi() = {"Nome", "b", "p", "u", "d", {3, 4}, {"/y"}, "l", "system", true};
  finding.groups = {copie, app};
  finding.trattieni("/h/nas\xFF", "volume di rete");
  sviluppo.findings = {finding};
  return sezioni;
}

TEST(Risultati, EverythingComesBackAndTheUnscannedStaysIdle) {
  const std::string testo = scriviRisultati(piene());
  Sezioni lette = vuote();
  ASSERT_TRUE(leggiRisultati(testo, lette).ok());
  EXPECT_EQ(scriviRisultati(lette), testo);
  const Finding& letto = lette.find("sviluppo")->second.findings[0];
  const Finding scritto = piene().find("sviluppo")->second.findings[0];
  const auto voce = [](const Voce& v) { return std::tuple(v.path, v.identita, v.lunghezza); };
  const auto gruppo = [](const Group& g) { return std::tuple(g.hash, g.identita, g.dallaCache); };
  EXPECT_EQ(voce(letto.items[0]), voce(scritto.items[0]));
  EXPECT_EQ(gruppo(letto.groups[0]), gruppo(scritto.groups[0]));
  EXPECT_EQ(*letto.groups[1].scheda, *scritto.groups[1].scheda);
  EXPECT_EQ(letto.items[0].libera(), 1000);
  EXPECT_EQ(letto.groups[0].libere[1] * letto.groups[1].libere[1], 6);
  EXPECT_TRUE(lette.find("sviluppo")->second.scanned);
  EXPECT_FALSE(lette.find("privacy")->second.scanned);
  EXPECT_TRUE(lette.find("privacy")->second.status.empty());
}

TEST(Risultati, ACutFileFillsNothingWhereverItIsCut) {
  const std::string testo = scriviRisultati(piene());
  for (std::size_t fino = 0; fino < testo.size(); ++fino) {
    Sezioni sezioni = vuote();
    ASSERT_FALSE(leggiRisultati(testo.substr(0, fino), sezioni).ok()) << fino;
    ASSERT_FALSE(sezioni.find("sviluppo")->second.scanned);
  }
}

TEST(Risultati, WrongTypesTakeTheirEmptyValues) {
  Sezioni sezioni = vuote();
  ASSERT_TRUE(leggiRisultati(R"({"sviluppo":{"ts":5,"status":7,"denied":"x","denied_top":{},
      "findings":[1,null,{"id":[],"items":{"a":1},"groups":[3,{"size":-4,"paths":"p",
      "identita":[[1,2,3,3]],"hash":"zz","pesi":["x",9223372036854775807,-1]},
      {"paths":["/a"],"mtimes_ns":[5],"identita":[[1,2,3,9]]}]},{"items":[{"path":1,"size":"2","mtime":true},"y"]}]},
      "privacy":[],"ignota":{"ts":1}})",
                             sezioni)
                  .ok());
  const Sec& sviluppo = sezioni.find("sviluppo")->second;
  EXPECT_TRUE(sviluppo.scanned);
  EXPECT_EQ(sviluppo.denied, 0);
  ASSERT_EQ(sviluppo.findings.size(), 2U);
  ASSERT_EQ(sviluppo.findings[0].groups.size(), 3U);
  const Group& gruppo = sviluppo.findings[0].groups[1];
  EXPECT_EQ(gruppo.size, 0);
  EXPECT_EQ(gruppo.scheda->pesi, (std::vector<std::int64_t>{0, 0, 0}));
  EXPECT_TRUE(gruppo.identita.empty() && !gruppo.conHash());
  EXPECT_FALSE(sviluppo.findings[0].groups[2].identita.at(0).nota());
  EXPECT_EQ(sviluppo.totale(), 0);
  EXPECT_FALSE(sezioni.find("privacy")->second.scanned);
  EXPECT_FALSE(leggiRisultati("[1]", sezioni).ok());
}

}  // namespace
}  // namespace pellak
