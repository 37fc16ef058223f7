#include "api/Richieste.h"

namespace pellak::api {
namespace {

const std::string kRiuscito = R"(200 {"ok":true})";
const std::string kNonValido = R"(400 {"err":"percorso non valido"})";

class RotteFileTest : public Richieste {};

TEST_F(RotteFileTest, PathsAreMadePlainBeforeTheyAreShownOrOpened) {
  fakes::scriviFile(home / "doc/a\xff.txt", "x");
  EXPECT_EQ(chiedi("/api/mostra", R"({"path":"~/doc/./x/..//a\uefff.txt"})"), kRiuscito);
  EXPECT_EQ(chiedi("/api/apri", R"({"path":")" + home.percorso() + R"(/doc/"})"), kRiuscito);
  EXPECT_EQ(fileManager.mostrati,
            (std::vector<std::vector<std::string>>{{home / "doc/a\xff.txt"}}));
  EXPECT_EQ(chiedi("/api/mostra", R"({"cestino":true})"), kRiuscito);
  EXPECT_EQ(fileManager.aperti, (std::vector<std::string>{home / "doc", "Cestino"}));
}

TEST_F(RotteFileTest, UnusablePathsReachNobody) {
  for (const std::string_view rotta : {"/api/mostra", "/api/apri"}) {
    for (const std::string corpo :
         {"{}", R"({"path":""})", R"({"path":"doc"})", R"({"path":"~/manca"})", R"({"path":3})",
          R"({"path":"~altri/x"})", R"({"path":"~\u0000"})", R"({"path":["/"]})",
          R"({"cestino":1})"}) {
      EXPECT_EQ(chiedi(rotta, corpo), kNonValido) << rotta << corpo;
    }
  }
  EXPECT_TRUE(fileManager.mostrati.empty() && fileManager.aperti.empty());
}

TEST_F(RotteFileTest, AFailingDesktopIsReported) {
  fileManager.esito = Error{ErrorKind::failed, 0, "no desktop"};
  EXPECT_EQ(chiedi("/api/mostra", R"({"path":"/"})"),
            R"(500 {"err":"gestore dei file non disponibile"})");
  EXPECT_EQ(chiedi("/api/mostra", R"({"cestino":true})"),
            R"(500 {"err":"gestore dei file non disponibile"})");
  EXPECT_EQ(chiedi("/api/apri", R"({"path":"/"})"), R"(500 {"err":"apertura non riuscita"})");
}

TEST_F(RotteFileTest, RevealShowsWhatIsLeftOfOneGroup) {
  fakes::scriviFile(home / "a", "x");
  fakes::scriviFile(home / "b", "x");
  Finding finding;
  finding.id = "duplicates";
  finding.groups.resize(2);
  finding.groups[0].paths = {home / "a", home / "sparito", home / "b"};
  finding.groups[1].paths = {home / "sparito"};
  trova(finding);
  scandisci("duplicati");

  EXPECT_EQ(chiedi("/api/reveal", R"({"group":0})"), kRiuscito);
  EXPECT_EQ(fileManager.mostrati,
            (std::vector<std::vector<std::string>>{{home / "a", home / "b"}}));
  EXPECT_EQ(chiedi("/api/reveal", R"({"id":"duplicates","group":1})"), kNonValido);
  for (const std::string corpo :
       {"{}", R"({"group":2})", R"({"group":-1})", R"({"group":"0"})", R"({"group":0.5})",
        R"({"id":"apps","group":0})", R"({"group":9223372036854775807})"}) {
    EXPECT_EQ(chiedi("/api/reveal", corpo), R"(200 {"err":"gruppo inesistente"})") << corpo;
  }
  EXPECT_EQ(fileManager.mostrati.size(), 1U);
}

}  // namespace
}  // namespace pellak::api
