#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

#include "PellakCore/Impostazioni.h"
#include "PellakCore/base/Json.h"
#include "fakes/CartellaTemporanea.h"
#include "fakes/GuardedFiles.h"

namespace pellak {
namespace {

class ImpostazioniTest : public testing::Test {
 protected:
  Config scrivi(const std::string& corpo) {
    const auto documento = JsonDocument::parse(corpo);
    auto nuove = impostazioni.scrivi(documento->radice());
    EXPECT_TRUE(nuove.ok());
    return *nuove;
  }

  fakes::CartellaTemporanea home;
  fakes::GuardedFiles files;
  Store store{home.percorso()};
  Impostazioni impostazioni{files, store};
};

TEST_F(ImpostazioniTest, TakesOnlyValuesInsideTheirBoundsAndOfTheirType) {
  EXPECT_EQ(scrivi(R"({"dup_min_mb":0})").intero("dup_min_mb"), 5);
  EXPECT_EQ(scrivi(R"({"dup_min_mb":1001})").intero("dup_min_mb"), 5);
  EXPECT_EQ(scrivi(R"({"dup_min_mb":1})").intero("dup_min_mb"), 1);
  EXPECT_EQ(scrivi(R"({"dup_min_mb":1000})").intero("dup_min_mb"), 1000);
  EXPECT_EQ(scrivi(R"({"auto_days":"7","menu_ram":0})").intero("auto_days"), 0);
  EXPECT_TRUE(impostazioni.leggi().booleano("menu_ram"));
  const Config finali = scrivi(R"({"dup_exclude":["  /a b \n","","   ",5],"menu_ram":false})");
  EXPECT_EQ(finali.testi("dup_exclude"), std::vector<std::string>{"/a b"});
  EXPECT_FALSE(impostazioni.leggi().booleano("menu_ram"));
}

TEST_F(ImpostazioniTest, ResetIsTheDefaultsAndTakesTheLoginItemAway) {
  scrivi(R"({"dup_min_mb":9,"login_item":true})");
  ASSERT_TRUE(std::filesystem::exists(store.loginItem()));
  EXPECT_NE(fakes::leggiFile(store.loginItem()).find("<string>com.pellaklab.cleaner</string>"),
            std::string::npos);
  ASSERT_TRUE(impostazioni.azzera().ok());
  ASSERT_TRUE(impostazioni.azzera().ok());
  EXPECT_FALSE(std::filesystem::exists(store.loginItem()));
  EXPECT_EQ(impostazioni.leggi().intero("dup_min_mb"), 5);
}

TEST_F(ImpostazioniTest, ABrokenFileMeansDefaultsAndIsKeptAside) {
  fakes::scriviFile(store.impostazioni(), R"({"dup_min_mb":9,"dup_ex)");
  EXPECT_EQ(impostazioni.leggi().intero("dup_min_mb"), 5);
  scrivi(R"({"auto_days":3})");
  EXPECT_EQ(impostazioni.leggi().intero("auto_days"), 3);
  EXPECT_EQ(fakes::leggiFile(store.impostazioni() + ".guasto"), R"({"dup_min_mb":9,"dup_ex)");
}

TEST_F(ImpostazioniTest, SettingsThatCannotBeReadAreNotOverwritten) {
  scrivi(R"({"dup_min_mb":9})");
  files.nonLetto = Error{ErrorKind::denied, 0, "denied"};
  const auto corpo = JsonDocument::parse(R"({"auto_days":3})");
  EXPECT_FALSE(impostazioni.scrivi(corpo->radice()).ok());
  files.nonLetto.reset();
  EXPECT_EQ(impostazioni.leggi().intero("dup_min_mb"), 9);
}

TEST_F(ImpostazioniTest, MembersOfAnotherVersionSurviveAWrite) {
  // 1e400 is beyond any double; it must not make the file unreadable.
  fakes::scriviFile(store.impostazioni(),
                    R"({"futura":{"a":[1,"è"]},"dup_min_mb":"x","enorme":1e400})");
  scrivi(R"({"auto_days":3})");
  EXPECT_EQ(impostazioni.leggi().intero("auto_days"), 3);
  EXPECT_NE(fakes::leggiFile(store.impostazioni()).find(R"("futura":{"a":[1,"è"]})"),
            std::string::npos);
}

TEST_F(ImpostazioniTest, ConcurrentWritersLoseNothingAndObserversHear) {
  std::atomic<int> avvisi{0};
  const auto token = impostazioni.osserva([&] { ++avvisi; });
  Impostazioni altraIstanza(files, store);  // as another process would have
  std::thread primo([&] {
    for (int i = 1; i <= 25; ++i) scrivi("{\"dup_min_mb\":" + std::to_string(i) + "}");
  });
  std::thread secondo([&] {
    for (int i = 1; i <= 25; ++i) {
      const auto corpo = JsonDocument::parse("{\"auto_days\":" + std::to_string(i) + "}");
      EXPECT_TRUE(altraIstanza.scrivi(corpo->radice()).ok());
    }
  });
  primo.join();
  secondo.join();
  EXPECT_EQ(impostazioni.leggi().intero("dup_min_mb"), 25);
  EXPECT_EQ(impostazioni.leggi().intero("auto_days"), 25);
  EXPECT_EQ(avvisi, 25);
  impostazioni.dimentica(token);
  scrivi("{}");
  EXPECT_EQ(avvisi, 25);
}

}  // namespace
}  // namespace pellak
