#include <filesystem>

#include "api/Richieste.h"

namespace pellak::api {
namespace {

/// The values with what a case changes: the smallest duplicate, the processor row, the excluded.
std::string valori(int dupMin = 5, const std::string& menuCpu = "true",
                   const std::string& esclusi = "") {
  return R"({"dup_min_mb":)" + std::to_string(dupMin) +
         R"(,"large_min_mb":200,"large_age_days":180,"cache_age_days":7,)"
         R"("leftover_age_days":30,"installer_age_days":60,"auto_days":0,"login_item":false,)"
         R"("menu_disk":true,"menu_ram":true,"menu_cpu":)" +
         menuCpu +
         R"(,"menu_net":true,"menu_batt":true,"menu_bar_live":false,"rete_avvisi":false,)"
         R"("dup_exclude":[)" +
         esclusi + "]}";
}

std::string risposta(const std::string& testo) { return "200 {\"valori\":" + testo + "}"; }

class RotteImpostazioniTest : public Richieste {};

TEST_F(RotteImpostazioniTest, AnEmptyBodyReadsValuesDefaultsAndLimits) {
  fakes::scriviFile(
      home / "regole.json",
      R"({"duplicates":{"roots":["~/Foto","~/Manca","/"]},"large_old":{"roots":["~"]}})");
  fakes::scriviFile(home / "Foto/x", "");
  const std::string tutto =
      "200 {\"valori\":" + valori() + ",\"default\":" + valori() +
      R"(,"limiti":{"dup_min_mb":[1,1000],"large_min_mb":[50,10000],)"
      R"("large_age_days":[30,3650],"cache_age_days":[0,90],"leftover_age_days":[0,365],)"
      R"("installer_age_days":[0,365],"auto_days":[0,30]},"radici":{"duplicati":[")" +
      home.percorso() + R"(/Foto","/"],"grandi":[")" + home.percorso() + R"("]}})";
  EXPECT_EQ(chiedi("/api/settings"), tutto);
  EXPECT_EQ(chiedi("/api/settings", "[1]"), tutto) << "no object counts as an empty one";
  EXPECT_FALSE(std::filesystem::exists(store.impostazioni())) << "reading writes nothing";
}

TEST_F(RotteImpostazioniTest, WritesWhatIsAllowedAndForgetsItOnReset) {
  EXPECT_EQ(chiedi("/api/settings",
                   R"({"dup_min_mb":9,"menu_cpu":false,"auto_days":31,"large_min_mb":"60",)"
                   R"("dup_exclude":["  /a\u0000b\uef80 ",""," "],"inventata":1})"),
            risposta(valori(9, "false", "\"/a\\u0000b\xee\xbe\x80\"")));
  EXPECT_EQ(chiedi("/api/settings", R"({"reset":false,"dup_min_mb":0})"),
            risposta(valori(9, "false", "\"/a\\u0000b\xee\xbe\x80\"")));
  EXPECT_EQ(chiedi("/api/settings", R"({"reset":true,"dup_min_mb":10})"), risposta(valori()));
  EXPECT_FALSE(std::filesystem::exists(store.impostazioni()));
}

TEST_F(RotteImpostazioniTest, AFailedWriteChangesNothingAndSaysSo) {
  ASSERT_EQ(chiedi("/api/settings", R"({"dup_min_mb":9})"), risposta(valori(9)));
  files.soloLettura = true;
  const std::string rifiuto =
      R"(500 {"err":"scrittura non riuscita","causa":"volume in sola lettura"})";
  EXPECT_EQ(chiedi("/api/settings", R"({"dup_min_mb":10})"), rifiuto);
  EXPECT_EQ(chiedi("/api/settings", R"({"reset":true})"), rifiuto);
  files.soloLettura = false;
  EXPECT_EQ(chiedi("/api/settings", R"({"menu_cpu":true})"), risposta(valori(9)));
}

}  // namespace
}  // namespace pellak::api
