#include <filesystem>
#include <future>
#include <thread>

#include "fakes/ConMotore.h"
#include "fakes/ScriptedLauncher.h"
#include "shell/Notifiche.h"
#include "shell/Sorveglianza.h"

namespace pellak::shell {
namespace {

class SorveglianzaTest : public fakes::ConMotore {
 protected:
  SorveglianzaTest() : ConMotore(1'000'000.5) {
    tabella.speciali["duplicates"] = {"Ricerca", [this](const ScanContext&) {
                                        ++scansioni;
                                        if (durante) durante();
                                        Finding finding;
                                        finding.id = "duplicates";
                                        finding.groups = {{}};
                                        finding.groups[0].size = 3 << 20;
                                        finding.groups[0].paths = {"/a", "/b"};
                                        return std::vector<Finding>{finding};
                                      }};
    engine = crea(nullptr, [this](const Snapshot& stato) { sorveglianza->concluso(stato); });
    sorveglianza = std::make_unique<Sorveglianza>(
        *engine, impostazioni, files, clock,
        [this](const std::string& messaggio, const std::string& titolo) {
          notifiche.push_back(titolo + ": " + messaggio);
        });
  }

  void ogniGiorni(const std::string& giorni) {
    fakes::scriviFile(store.impostazioni(), R"({"auto_days":)" + giorni + "}");
  }
  void ultima(const std::string& testo) { fakes::scriviFile(store.ultimaScansioneAuto(), testo); }
  int controlla() {
    const int prima = scansioni;
    sorveglianza->controlla();
    engine->attendiFine();
    return scansioni - prima;
  }

  std::vector<std::string> notifiche;
  std::function<void()> durante;
  std::atomic<int> scansioni{0};
  std::unique_ptr<Sorveglianza> sorveglianza;
  std::unique_ptr<Engine> engine;
};

TEST_F(SorveglianzaTest, ScansWhenTheDaysHavePassedAndTellsTheResult) {
  ogniGiorni("1");
  ultima(" 913601.5");
  EXPECT_EQ(controlla(), 0) << "86,399 seconds ago";
  ultima("913600.5");
  EXPECT_EQ(controlla(), 1);
  EXPECT_EQ(fakes::leggiFile(store.ultimaScansioneAuto()), "1000000.5");
  EXPECT_EQ(notifiche, std::vector<std::string>{
                           "Pellak Cleaner: Controllo periodico completato: puoi liberare 3.0 MiB. "
                           "Apri Pellak Cleaner per decidere."});
  EXPECT_EQ(controlla(), 0) << "just done";
  for (const char* rotto : {"", "mai", "inf", "nan", "1000000.5 x", "1000000.5.5", "0x1p30"}) {
    ultima(rotto);
    EXPECT_EQ(controlla(), 1) << rotto;
  }
}

TEST_F(SorveglianzaTest, IsOffWithoutAPositiveWholeNumberOfDays) {
  for (const char* giorni : {"0", "-3", "\"7\"", "null"}) {
    ogniGiorni(giorni);
    EXPECT_EQ(controlla(), 0) << giorni;
  }
}

TEST_F(SorveglianzaTest, ARefusedStartIsTriedAgainAndAnUnwritableFileKeepsNothing) {
  ogniGiorni("1");
  files.soloLettura = true;
  EXPECT_EQ(controlla(), 1);
  EXPECT_FALSE(std::filesystem::exists(store.ultimaScansioneAuto()));
  files.soloLettura = false;
  std::promise<void> finisci;
  durante = [&] { finisci.get_future().wait(); };
  ASSERT_TRUE(engine->start("duplicati"));
  sorveglianza->controlla();
  EXPECT_FALSE(std::filesystem::exists(store.ultimaScansioneAuto()));
  finisci.set_value();
  engine->attendiFine();
  durante = nullptr;
  EXPECT_EQ(notifiche.size(), 1U) << "only of the scan that a check began";
  EXPECT_EQ(controlla(), 1);
}

TEST_F(SorveglianzaTest, ChecksAgainAndAgain) {
  ogniGiorni("1");
  sorveglianza->arma(0.02);
  for (int i = 0; i < 1000 && scansioni < 2; ++i) {
    clock.advance(86'400);
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  EXPECT_GE(scansioni, 2);
}

TEST(Notifiche, EscapesForAppleScriptAndSaysWhenItCannotStart) {
  EXPECT_EQ(scriptNotifica(R"(di "sì" \ no)", "T\"t"),
            R"(display notification "di \"sì\" \\ no" with title "T\"t")");
  struct Muto final : Notifier {
    Result<void> notify(const std::string&, const std::string&) override {
      return Error{ErrorKind::missing, 0, "no service"};
    }
  } muto;
  fakes::ScriptedLauncher launcher;
  fakes::FakeClock clock;
  Comandi comandi(launcher, clock, FamigliaStrumenti::macos);
  EXPECT_EQ(Notifiche(comandi, muto, FamigliaStrumenti::macos).mostra("m", "t"),
            "osascript non eseguibile");
  EXPECT_EQ(
      launcher.lines(),
      std::vector<std::string>{R"(/usr/bin/osascript -e display notification "m" with title "t")"});
  EXPECT_EQ(Notifiche(comandi, muto, FamigliaStrumenti::linux).mostra("m", "t"),
            "notifica non riuscita");
}

}  // namespace
}  // namespace pellak::shell
