#include <chrono>

#include "api/Richieste.h"

namespace pellak::api {
namespace {

class RotteMappaTest : public Richieste {
 protected:
  std::string finita(const std::string& cartella, const std::string& corpo) {
    chiedi("/api/mappa", corpo);
    if (!motore().mappa().attendi(cartella, std::chrono::seconds(10))) return "still measuring";
    return chiedi("/api/mappa", corpo);
  }
};

TEST_F(RotteMappaTest, MapsTheHomeFolderUnlessAnotherIsNamed) {
  const std::string casa = home.percorso();
  lister.file(casa + "/foto/a", 4096);
  lister.file("/altrove/b", 4096);
  const std::string attesa = R"(200 {"path":")" + casa +
                             R"(","tot":4096,"tot_h":"4.0 KiB","items":[{"nome":"foto","dir":true,)"
                             R"("size":4096,"size_h":"4.0 KiB"}],"misurando":false})";
  EXPECT_EQ(finita(casa, "{}"), attesa);
  EXPECT_EQ(chiedi("/api/mappa", R"({"path":7,"force":"si"})"), attesa);
  EXPECT_EQ(chiedi("/api/mappa", R"({"path":"~/./foto/.."})"), attesa);
  EXPECT_EQ(chiedi("/api/mappa", R"({"path":"//altrove/"})"),
            R"(200 {"path":"/altrove","tot":4096,"tot_h":"4.0 KiB","items":[{"nome":"b",)"
            R"("dir":false,"size":4096,"size_h":"4.0 KiB"}],"misurando":false})");
}

TEST_F(RotteMappaTest, PathsThatCannotBeListedAreRefused) {
  lister.folder("/chiusa").refused = true;
  lister.file("/file", 1);
  const auto rifiutato = [&](const std::string& percorso) {
    return chiedi("/api/mappa", "{\"path\":\"" + percorso + "\"}");
  };
  for (const char* percorso : {"/chiusa", "/manca", "/file"}) {
    EXPECT_EQ(rifiutato(percorso), "403 {\"err\":\"cartella non leggibile (permessi)\"}");
  }
  for (const char* percorso : {"", "relativa", "/a\\u0000b"}) {
    EXPECT_EQ(rifiutato(percorso), "400 {\"err\":\"percorso non valido\"}");
  }
}

TEST_F(RotteMappaTest, ARouteThatChangesTheDiskMakesTheNextMapMeasureAgain) {
  lister.file("/v/cose/a", 4096);
  const std::string corpo = R"({"path":"/v"})";
  const std::string prima = finita("/v", corpo);
  lister.file("/v/cose/b", 4096);
  EXPECT_EQ(chiedi("/api/mappa", corpo), prima);
  chiedi("/api/trash");
  EXPECT_NE(finita("/v", corpo).find(R"("tot":8192)"), std::string::npos);
}

}  // namespace
}  // namespace pellak::api
