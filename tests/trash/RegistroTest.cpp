#include <filesystem>
#include <gtest/gtest.h>
#include <set>

#include "fakes/CartellaTemporanea.h"
#include "platform/posix/FilesPosix.h"
#include "trash/Registro.h"

namespace pellak::trash {
namespace {

class RegistroTest : public testing::Test {
 protected:
  void accoda(const std::string& testo) {
    fakes::scriviFile(store_.registro(), fakes::leggiFile(store_.registro()) + testo);
  }

  static std::string riga(const std::string& id, const std::string& trash = "/t") {
    return R"({"id":")" + id +
           R"(","ts":1.5,"azione":"A","tot":3,"items":[{"orig":"/o","trash":")" + trash +
           R"(","rip":false},{"orig":"/p","rip":false}]})" + "\n";
  }

  /// Newest first, with a star for every item that was put back.
  std::string visti(Registro& registro) {
    std::string testo;
    const auto letto = registro.visita([&](const Operazione& operazione) {
      testo += operazione.id;
      for (const Mossa& mossa : operazione.items) testo += mossa.rip ? "*" : "";
      testo += ' ';
    });
    return letto ? testo : letto.error().percorso;
  }

  fakes::CartellaTemporanea home_;
  const Store store_{home_.percorso()};
  posix::FilesPosix files_;
  const std::unique_ptr<FileReader> reader_ = creaFileReader();
  Registro registro_{files_, *reader_, store_};
};

TEST_F(RegistroTest, WhatIsAppendedByAnybodyIsReadOnceAndATornLineWhenItIsWhole) {
  EXPECT_EQ(visti(registro_), "");
  accoda(riga("A"));
  EXPECT_EQ(visti(registro_), "A ");
  const std::string tardiva = riga("B");
  accoda(tardiva.substr(0, 20));
  EXPECT_EQ(visti(registro_), "A ");
  accoda(tardiva.substr(20));
  EXPECT_EQ(visti(registro_), "B A ");
  accoda("\n\x01x\n[]\n{}\n{\"id\":5}\n{\"id\":\"C\"}\n" + std::string(100, '[') + "\n" +
         riga("D"));
  EXPECT_EQ(visti(registro_), "D C B A ");
  EXPECT_EQ(visti(registro_), "D C B A ");
}

TEST_F(RegistroTest, ARecordAfterATornLineStandsOnALineOfItsOwn) {
  accoda(riga("A") + R"({"id":"perso")");
  Operazione operazione;
  operazione.id = nuovoId();
  operazione.nota = "n";
  operazione.items = {{"/\xff\n\"", "/t/\xff", false, false}};
  ASSERT_TRUE(registro_.logOperation(operazione).ok());
  const auto letta = registro_.cerca(operazione.id);
  ASSERT_TRUE(letta.has_value());
  EXPECT_EQ(letta->items[0].orig, "/\xff\n\"");
  EXPECT_EQ(letta->items[0].trash, "/t/\xff");
  EXPECT_EQ(letta->nota, "n");
  EXPECT_NE(fakes::leggiFile(store_.registro()).find("{\"id\":\"perso\"\n{"), std::string::npos);
}

TEST_F(RegistroTest, AnotherOrAShorterFileIsReadFromItsBeginning) {
  accoda(riga("A") + riga("B"));
  EXPECT_EQ(visti(registro_), "B A ");
  fakes::scriviFile(store_.registro() + ".altro", riga("C") + riga("D") + riga("E"));
  std::filesystem::rename(store_.registro() + ".altro", store_.registro());
  EXPECT_EQ(visti(registro_), "E D C ");
  fakes::scriviFile(store_.registro(), riga("F"));
  EXPECT_EQ(visti(registro_), "F ");
  std::filesystem::remove(store_.registro());
  EXPECT_EQ(visti(registro_), "");
  EXPECT_FALSE(registro_.cerca("F").has_value());
  std::filesystem::create_directory(store_.registro());
  EXPECT_EQ(visti(registro_), store_.registro()) << "unreadable, not empty";
}

TEST_F(RegistroTest, AWayBackIsLaidOverItsRecordAndALaterItemTakesItsPlace) {
  accoda(riga("A", "/t/1") + riga("B", "/t/2") + riga("C", "/t/1"));
  ASSERT_TRUE(registro_.logRestore("B", {1}, 2.5).ok());
  accoda(
      "{\"ripristino\":\"manca\",\"indici\":[0]}\n"
      "{\"ripristino\":\"B\",\"indici\":[-1,2,99999999999999,\"x\"]}\n");
  EXPECT_EQ(visti(registro_), "C B* A ");
  EXPECT_TRUE(registro_.cerca("A")->items[0].superata);
  EXPECT_FALSE(registro_.cerca("C")->items[0].superata);
  EXPECT_FALSE(registro_.cerca("B")->items[0].superata);
}

TEST_F(RegistroTest, IdentifiersAreTwelveCharactersAndDiffer) {
  std::set<std::string> visti;
  for (int i = 0; i < 1000; ++i) {
    const std::string id = nuovoId();
    EXPECT_EQ(id.size(), 12U);
    EXPECT_TRUE(visti.insert(id).second);
  }
}

}  // namespace
}  // namespace pellak::trash
