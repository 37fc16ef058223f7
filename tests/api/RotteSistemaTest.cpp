#include <filesystem>

#include "api/Richieste.h"

namespace pellak::api {
namespace {

class RotteSistemaTest : public Richieste {};

TEST_F(RotteSistemaTest, TellsRefusedPlacesFromMissingOnes) {
  famiglia = FamigliaStrumenti::macos;
  const std::string resto =
      R"(,"sistema":"macos","casa":")" + home.percorso() +
      R"(","disco":{"totale":2147483648,"libero":1073741824,"usato":805306368}})";
  EXPECT_EQ(chiedi("/api/perms"), R"(200 {"luoghi":[],"fda_denied":false)" + resto);
  fakes::scriviFile(home / "Library/Safari/Bookmarks.plist", "x");
  std::filesystem::create_directories(home / "Library/Mail");
  files.negati = {home / "Library/Mail"};
  EXPECT_EQ(chiedi("/api/perms"),
            R"(200 {"luoghi":[{"nome":"Preferiti di Safari",)"
            R"("percorso":"~/Library/Safari/Bookmarks.plist","leggibile":true,)"
            R"("fda_denied":false},{"nome":"Archivio di Mail","percorso":"~/Library/Mail",)"
            R"("leggibile":false,"fda_denied":true}],"fda_denied":true)" +
                resto);
}

TEST_F(RotteSistemaTest, LeadsToTheSystemsPermissions) {
  const std::string app = R"({"app":"U\"\\1"})";
  EXPECT_EQ(chiedi("/api/perms/fda"), R"(200 {"err":"non disponibile"})");
  EXPECT_EQ(chiedi("/api/perms/automation", app), R"(200 {"err":"non disponibile"})");

  famiglia = FamigliaStrumenti::macos;
  EXPECT_EQ(chiedi("/api/perms/fda"), R"(200 {"err":"comando non eseguibile"})");
  launcher.answer(
      "/usr/bin/open x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles", {});
  EXPECT_EQ(chiedi("/api/perms/fda"), R"(200 {"ok":true})");

  EXPECT_EQ(chiedi("/api/perms/automation"), R"(200 {"err":"nessuna app indicata"})");
  EXPECT_EQ(chiedi("/api/perms/automation", app), R"(200 {"err":"osascript non eseguibile"})");
  const std::string script = R"(/usr/bin/osascript -e tell application "U\"\\1" to get name)";
  launcher.answer(script, {"Uno"});
  launcher.answer(script, {{}, "not allowed", {false, 1}});
  EXPECT_EQ(chiedi("/api/perms/automation", app), R"(200 {"ok":true,"automation":true})");
  EXPECT_EQ(chiedi("/api/perms/automation", app), R"(200 {"ok":true,"automation":false})");
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
