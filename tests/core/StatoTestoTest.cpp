#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>

#include "PellakCore/StatoTesto.h"

namespace pellak {
namespace {

std::string sezioneScritta(const char* id, const Sec& sezione) {
  StatoTesto stato;
  Rope uscita;
  stato.scriviSezione(uscita, *cercaMeta(id), sezione, {true, false, 77}, true,
                      [](std::string_view chiave) { return "icona:" + std::string(chiave); });
  return uscita.str();
}

TEST(StatoTesto, AFindingInFull) {
  ::setenv("TZ", "UTC", 1);
  ::tzset();
  Sec sezione;
  sezione.scanned = true;
  sezione.status = "Recuperabili 4.0 KiB.";
  sezione.denied = 1;
  sezione.deniedTop = {{"~/x", 1}};
  sezione.lastScan = 1'700'000'000;
  Finding finding;
  finding.id = "npm-cache";
  finding.name = "Cache di npm";
  finding.mode = "delete";
  finding.note = "nota";
  finding.items = {{"/h/a\"b", 4096, 1'600'000'000}, {"/h/c", 1, 1'600'000'000, 0, {}, 1}};
  sezione.findings = {finding};
  const std::string testo = sezioneScritta("sviluppo", sezione);
  EXPECT_NE(testo.find(R"(,"scanning":false,"scanned":true,"queued":true,)"
                       R"("status":"Recuperabili 4.0 KiB.","denied":1,)"
                       R"("denied_top":[{"cartella":"~/x","quanti":1}],"last_scan":1700000000,)"
                       R"("total":4097,"total_h":"4.0 KiB","findings":[{"id":"npm-cache",)"
                       R"("name":"Cache di npm","mode":"delete","note":"nota","hint":"",)"
                       R"("unmeasured":false,"total":4097,"total_h":"4.0 KiB","count":2,)"
                       R"("kind":"","items":[{"path":"/h/a\"b","size":4096,)"
                       R"("size_h":"4.0 KiB","when":"2020-09-13 12:26","mtime":1600000000},)"
                       R"({"path":"/h/c","size":1,"size_h":"1 B","when":"2020-09-13 12:26",)"
                       R"("mtime":1600000000,"libera":0}],"groups":[],"libera":4096}],)"
                       R"("libera":77,"disponibile":false})"),
            std::string::npos)
      << testo;
  EXPECT_EQ(testo.find(R"({"id":"sviluppo","name":"Sviluppo","desc":"Cache e file)"), 0U);
}

TEST(StatoTesto, DuplicatesTellWhatDiscardingFrees) {
  Sec sezione;
  Finding finding;
  finding.id = "duplicates";
  finding.mode = "delete";
  Group gruppo;
  gruppo.size = 10'485'760;
  gruppo.paths = {"/a", "/b", "/c"};
  gruppo.libere = Libere({7, 0, 10});
  finding.groups = {gruppo};
  sezione.findings = {finding};
  const std::string testo = sezioneScritta("duplicati", sezione);
  EXPECT_NE(testo.find(R"("total":20971520,"total_h":"20.0 MiB")"), std::string::npos);
  EXPECT_NE(testo.find(R"("paths":["/a","/b","/c"],"waste":20971520,"waste_h":"20.0 MiB",)"
                       R"("libera":7,"libere":[7,0,10],"tieni":"/a"})"),
            std::string::npos);
  EXPECT_NE(testo.find(R"("icon_src":"")"), std::string::npos);
}

TEST(StatoTesto, CountsOfAppsUpdatesAndStartupItems) {
  Finding apps;
  apps.id = "apps";
  apps.groups.resize(2);
  apps.groups[0].size = 2048;
  apps.groups[0].scheda.scrivi().bundle = "org.x";
  Finding updates;
  updates.id = "updates";
  updates.groups.resize(3);
  Sec applicazioni;
  applicazioni.findings = {apps, updates};
  const std::string testo = sezioneScritta("applicazioni", applicazioni);
  EXPECT_TRUE(testo.ends_with(R"("updates_n":3,"libera":77,"disponibile":false})")) << testo;
  EXPECT_NE(testo.find(R"("apps_n":2,"apps_h":"2.0 KiB")"), std::string::npos);
  EXPECT_NE(testo.find(R"("icon_src":"icona:org.x")"), std::string::npos);

  Finding sistema;
  sistema.id = "startup-system";
  sistema.kind = "avvio-sys";
  sistema.groups.resize(1);
  Sec avvio;
  avvio.findings = {sistema};
  const std::string conAvvio = sezioneScritta("avvio", avvio);
  EXPECT_TRUE(conAvvio.ends_with(R"("avvio_n":1,"libera":77,"disponibile":false})"));
  EXPECT_NE(conAvvio.find(R"("admin":true,"system":true)"), std::string::npos);
  EXPECT_NE(sezioneScritta("avvio", Sec()).find(R"("avvio_n":0)"), std::string::npos);
  EXPECT_NE(sezioneScritta("grandi", Sec()).find(R"("findings":[],"libera")"), std::string::npos);
}

}  // namespace
}  // namespace pellak
