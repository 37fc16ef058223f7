#include <filesystem>

#include "api/Richieste.h"

namespace pellak::api {
namespace {

class RotteSistemaTest : public Richieste {};

TEST_F(RotteSistemaTest, TellsRefusedPlacesFromMissingOnes) {
  famiglia = FamigliaStrumenti::macos;
  EXPECT_EQ(chiedi("/api/perms"), R"(200 {"luoghi":[],"fda_denied":false})");
  fakes::scriviFile(home / "Library/Safari/Bookmarks.plist", "x");
  std::filesystem::create_directories(home / "Library/Mail");
  files.negati = {home / "Library/Mail"};
  EXPECT_EQ(chiedi("/api/perms"),
            R"(200 {"luoghi":[{"nome":"Preferiti di Safari",)"
            R"("percorso":"~/Library/Safari/Bookmarks.plist","leggibile":true,)"
            R"("fda_denied":false},{"nome":"Archivio di Mail","percorso":"~/Library/Mail",)"
            R"("leggibile":false,"fda_denied":true}],"fda_denied":true})");
}

TEST_F(RotteSistemaTest, OnLinuxLooksAtWhatTheScansRead) {
  std::filesystem::create_directories(home / ".cache");
  const std::string risposta = chiedi("/api/perms");
  EXPECT_TRUE(risposta.starts_with(
      R"(200 {"luoghi":[{"nome":"Cartella utente","percorso":"~","leggibile":true,)"
      R"("fda_denied":false},{"nome":"Cache delle applicazioni","percorso":"~/.cache",)"
      R"("leggibile":true,"fda_denied":false},)"))
      << risposta;
}

TEST_F(RotteSistemaTest, TellsWhetherAnApplicationRuns) {
  applicazioni.installate["org.uno"] = {"org.uno", "Uno \"1\"", "/a/uno.desktop", "/usr/bin/uno"};
  applicazioni.installate["org.due"] = {"org.due", "Due", "/a/due.desktop", "/usr/bin/due"};
  applicazioni.attive = {"org.uno"};
  EXPECT_EQ(chiedi("/api/app_attiva", R"({"bundle":"org.uno"})"),
            R"(200 {"name":"Uno \"1\"","attiva":true})");
  EXPECT_EQ(chiedi("/api/app_attiva", R"({"bundle":"org.due"})"),
            R"(200 {"name":"Due","attiva":false})");
  for (const std::string corpo : {"{}", R"({"bundle":"org.tre"})", R"({"bundle":[]})"}) {
    EXPECT_EQ(chiedi("/api/app_attiva", corpo), R"(200 {"name":"","attiva":false})");
  }
}

}  // namespace
}  // namespace pellak::api
