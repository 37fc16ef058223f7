#include <chrono>
#include <future>
#include <gmock/gmock.h>

#include "api/Richieste.h"
#include "fakes/FakeDesktop.h"
#include "shell/AppDelegate.h"
#include "shell/Bridge.h"

namespace pellak::shell {
namespace {

using testing::ElementsAre;

class AppDelegateTest : public api::Richieste {
 protected:
  AppDelegate& app() {
    if (!app_) {
      router_ = std::make_unique<api::Router>(router());
      app_ = std::make_unique<AppDelegate>(AmbienteShell{
          motore(), impostazioni, *router_, files, clock, host, keepAwake, probe,
          FamigliaStrumenti::linux, home.percorso(), "/risorse", "1.2", [this] { return pagina; },
          [this] {
            ++riavvii;
            return riavviabile;
          },
          [] {},
          [this](const std::string& nome) -> std::optional<std::string> {
            const auto voce = ambiente.find(nome);
            return voce == ambiente.end() ? std::nullopt : std::optional(voce->second);
          },
          [this](const std::string& riga) { stampate.push_back(riga); }});
    }
    return *app_;
  }

  /// Launches and forgets what was done until then.
  AppDelegate& avviata() {
    app().esegui();
    host.taken();
    return app();
  }

  static const MenuEntry& sveglio(const std::vector<MenuEntry>& menu) { return menu.at(3); }

  fakes::FakeDesktop host{clock};
  fakes::FakeProbe probe;
  fakes::FakeKeepAwake keepAwake;
  std::optional<std::string> pagina = "<p>pagina</p>";
  std::map<std::string, std::string> ambiente;
  std::vector<std::string> stampate;
  bool riavviabile = true;
  int riavvii = 0;

 private:
  std::unique_ptr<api::Router> router_;
  std::unique_ptr<AppDelegate> app_;
};

TEST_F(AppDelegateTest, LaunchesWithTheEmbeddedPageOrTheFile) {
  app().esegui();
  EXPECT_THAT(host.taken(), ElementsAre("window Pellak Cleaner 1100x740 min 780x520 pellak api",
                                        "html <p>pagina</p>"));
  EXPECT_EQ(host.mainMenu.front().titolo, "Informazioni su Pellak Cleaner");
  EXPECT_EQ(host.mainMenu.back().titolo, "Esci da Pellak Cleaner");
  pagina.reset();
  app().pageGone();
  EXPECT_THAT(host.taken(),
              ElementsAre("file /risorse/engine/ui.html in /risorse/engine",
                          testing::StartsWith("alert Pellak Cleaner|La pagina si è chiusa")));
  app().pageGone();
  EXPECT_THAT(host.taken(), ElementsAre(testing::HasSubstr("di nuovo"))) << "no endless reloading";
}

TEST_F(AppDelegateTest, AnswersEveryRequestInOrderAndDropsEverythingElse) {
  avviata();
  for (const char* storto : {"", "{", "null", "[]", "7", R"({"id":1})", R"({"path":"/api/state"})",
                             R"({"id":"1","path":"/api/state"})", R"({"id":1,"path":7})"}) {
    app().message("api", storto);
  }
  app().message("altro", R"({"id":1,"path":"/api/stop"})");
  app().message("pellak", R"({"id":1,"path":"/api/stop"})");
  app().message("pellak", "\"boh\"");
  app().message("api", R"({"id":7,"path":"/api/stop","body":[]})");
  app().message("api", R"({"id":-8,"path":"/api/scan","body":{"section":"boh"}})");
  app().message("api", R"({"id":9,"path":"/api/\"\n"})");
  host.turn(3);
  EXPECT_THAT(host.taken(),
              ElementsAre(R"(js __apiDone(7, 200, "{\"ok\":true}"))",
                          R"(js __apiDone(-8, 200, "{\"err\":\"sezione inesistente\"}"))",
                          R"(js __apiDone(9, 404, "{\"err\":\"not found\"}"))"));
}

TEST_F(AppDelegateTest, ASlowRequestHoldsUpNoOrdinaryOne) {
  /// The reply to a slow request waits for the one to an ordinary request.
  struct PaginaLenta final : Pagina {
    void apiDone(std::int64_t id, int /*stato*/, const Rope& /*risposta*/) override {
      if (id == 2) return ordinaria.set_value();
      superata =
          ordinaria.get_future().wait_for(std::chrono::seconds(20)) == std::future_status::ready;
    }
    void chiama(std::string_view /*funzione*/,
                std::span<const std::string> /*argomenti*/) override {}
    std::promise<void> ordinaria;
    bool superata = false;
  } lenta;
  api::Router instradatore = router();
  Bridge ponte(instradatore, lenta, nullptr);
  for (const char* testo :
       {R"({"id":1,"path":"/api/energia"})", R"({"id":2,"path":"/api/stop"})"}) {
    auto documento = std::make_shared<const JsonDocument>(JsonDocument::parse(testo).value());
    ponte.receive("api", documento, documento->radice());
  }
  ponte.attendiRisposte();
  EXPECT_TRUE(lenta.superata);
}

TEST(Letterale, KeepsWhateverAReplyHolds) {
  EXPECT_EQ(letterale("a\"\\\n\x01\u2028è"), "\"a\\\"\\\\\\u000a\\u0001\u2028è\"");
}

TEST_F(AppDelegateTest, ClosingTheWindowHidesItAndShowingItTellsThePage) {
  avviata();
  host.closeWindow();
  host.turn();
  EXPECT_THAT(host.taken(),
              ElementsAre("js window.__pellakVisible && __pellakVisible(false)", "accessory"));
  app().reopened();
  EXPECT_THAT(host.taken(), ElementsAre("regular", "present",
                                        "js window.__pellakVisible && __pellakVisible(true)"));
  host.closeWindow();
  app().showWindow();
  host.taken();
  host.turn();
  EXPECT_TRUE(host.taken().empty()) << "shown again before the next turn";
  app().menuChosen(MenuAction::scanAll);
  EXPECT_EQ(host.taken().back(),
            "js V.scanAllPending=true;api('/api/scan',{section:'all'}).then(poll)");
}

TEST_F(AppDelegateTest, TheMenuListsTheKeysOfThePageAndPassesThemOn) {
  avviata();
  std::string tasti;
  for (const MenuEntry& voce : host.mainMenu) {
    tasti += voce.tasto;
    for (const MenuEntry& vista : voce.sotto) {
      tasti += vista.tasto;
      app().menuChosen(vista.azione);
      EXPECT_EQ(host.taken().back(), "js window.__pellakMenu && __pellakMenu('vista'," +
                                         std::to_string(std::stoi(vista.tasto) - 1) + ")");
    }
  }
  EXPECT_EQ(tasti, ",r123456789q");
  EXPECT_EQ(host.mainMenu.at(4).sotto.at(8).titolo, "Backup e snapshot");
  app().menuChosen(MenuAction::scanView);
  EXPECT_EQ(host.taken().back(), "js window.__pellakMenu && __pellakMenu('scansiona')");
}

TEST_F(AppDelegateTest, WithoutAStatusHostClosingOnlyMinimises) {
  host.hasStatusHost = false;
  avviata();
  EXPECT_FALSE(host.closeHides);
}

TEST_F(AppDelegateTest, WordsOfThePage) {
  avviata();
  host.folders = {"/uno", "/d\"ue\n", "/tre\xff"};
  app().message("pellak", "\"pickFolder\"");
  host.turn();
  EXPECT_THAT(host.taken(),
              ElementsAre("choose Escludi|Scegli le cartelle da escludere dalla ricerca duplicati",
                          "js addExcludedFolder(\"/uno\")", "js addExcludedFolder(\"/d\\\"ue\\n\")",
                          "js addExcludedFolder(\"/tre\uefff\")"));
  app().message("pellak", "\"ready\"");
  app().message("pellak", "\"quit\"");
  host.pass(0.5);
  EXPECT_TRUE(host.taken().empty());
  host.pass(0.1);
  EXPECT_THAT(host.taken(), ElementsAre("terminate 0"));
  riavviabile = false;
  app().message("pellak", "\"restart\"");
  EXPECT_TRUE(host.taken().empty()) << "it goes on when nothing starts";
}

TEST_F(AppDelegateTest, AsksForTheRestartOnceAfterTheUserWentToGrantAccess) {
  avviata();
  app().activated();
  EXPECT_TRUE(host.taken().empty());
  app().message("pellak", "\"fdaPending\"");
  app().activated();
  EXPECT_THAT(host.taken(),
              ElementsAre("alert Applico il permesso|Se hai attivato Pellak Cleaner nell'elenco "
                          "Accesso completo al disco, un riavvio rapido lo rende "
                          "operativo.|Riavvia ora|Più tardi"));
  host.answer(1);
  app().activated();
  EXPECT_TRUE(host.taken().empty());
  EXPECT_EQ(riavvii, 0);
}

TEST_F(AppDelegateTest, DialogsOfThePageAreAnsweredByTheFirstButton) {
  avviata();
  std::vector<bool> risposte;
  for (const std::size_t pulsante : {0U, 1U}) {
    app().scriptConfirm("Sposto?", [&](bool si) { risposte.push_back(si); });
    EXPECT_THAT(host.taken(), ElementsAre("alert Confermi?|Sposto?|OK|Annulla"));
    host.answer(pulsante);
  }
  EXPECT_THAT(risposte, ElementsAre(true, false));
}

TEST_F(AppDelegateTest, TheMenuFollowsKeepAwakeAndSettings) {
  avviata();
  EXPECT_EQ(sveglio(host.statusMenu).titolo, "Tieni sveglio il computer");
  EXPECT_EQ(sveglio(host.statusMenu).sotto.at(2).titolo, "Finché non lo spengo io");
  app().menuChosen(MenuAction::awakeTwoHours);
  EXPECT_EQ(sveglio(host.statusMenu).titolo, "Tieni sveglio: attivo — 120 min rimasti");
  EXPECT_TRUE(sveglio(host.statusMenu).spunta);
  host.pass(7200);
  EXPECT_EQ(sveglio(host.statusMenu).titolo, "Tieni sveglio il computer");
  EXPECT_TRUE(keepAwake.held.empty());

  const auto titoli = [&] {
    std::vector<std::string> trovati;
    for (const StatRow& riga : host.readings) trovati.push_back(riga.title);
    return trovati;
  };
  EXPECT_THAT(titoli(), ElementsAre("Disco", "Memoria", "Processore", "Rete"));
  chiedi("/api/settings", R"({"menu_disk":false,"menu_cpu":false})");
  host.turn();
  EXPECT_THAT(titoli(), ElementsAre("Memoria", "Rete"));
}

TEST_F(AppDelegateTest, ReadingsAreDifferences) {
  avviata();
  probe.ticks = {{50, 100}, {100, 100}};
  probe.net = NetBytes{4096, 2048};
  probe.charge = BatteryCharge{0.5, true, 65};
  clock.advance(2);
  app().menuWillOpen();
  const StatRow& cpu = host.readings.at(2);
  EXPECT_EQ(cpu.value + "|" + cpu.sub, "75%|carico 1.50 · 2 core");
  EXPECT_THAT(cpu.cores, ElementsAre(0.5, 1.0));
  EXPECT_EQ(host.readings.at(3).value, "↓ 2.0 KiB/s  ↑ 1.0 KiB/s");
  EXPECT_EQ(host.readings.at(4).value + "|" + host.readings.at(4).sub,
            "50%|in carica · 1h 05m alla carica completa");
  probe.net = NetBytes{0, 0};
  probe.ticks = {{50, 100}};
  clock.advance(2);
  app().menuWillOpen();
  EXPECT_EQ(host.readings.at(3).value, "↓ 0 B/s  ↑ 0 B/s") << "an interface went away";
  EXPECT_EQ(host.readings.at(2).value, "0%");
}

TEST_F(AppDelegateTest, TheBarLivesWhileTheSettingIsOn) {
  avviata();
  EXPECT_FALSE(app().barraViva());
  chiedi("/api/settings", R"({"menu_bar_live":true})");
  host.turn();
  EXPECT_TRUE(app().barraViva());
  probe.net = NetBytes{4096, 0};
  host.pass(4);
  EXPECT_EQ(host.statusTitle, "CPU 0%  ↓ 1.0 KiB/s");
  chiedi("/api/settings", R"({"menu_bar_live":false})");
  host.turn();
  EXPECT_FALSE(app().barraViva());
  EXPECT_EQ(host.statusTitle, "");
  EXPECT_TRUE(host.timers.empty());
}

TEST_F(AppDelegateTest, AutomatedChecksPrintTheirLines) {
  ambiente = {{"PELLAK_TEST_BAR", "1"},
              {"PELLAK_JS", "return 1"},
              {"PELLAK_TEST_REOPEN", ""},
              {"PELLAK_TEST_SELFUPD", ""},
              {"PELLAK_TIME_START", "0"}};
  avviata();
  host.pass(2);
  EXPECT_FALSE(host.visible);
  host.pass(2);
  host.pass(2);
  ASSERT_EQ(stampate.size(), 4U);
  EXPECT_EQ(stampate[0], "SELFUPD avvio: err non disponibile");
  EXPECT_THAT(stampate, testing::IsSupersetOf({std::string("fatto: return 1"),
                                               std::string("REOPEN: sopravvissuto")}));
  EXPECT_EQ(stampate[3], "BARTEST 15 \"CPU 0%  ↓ 0 B/s\" timer attivo");
  app().message("pellak", "\"ready\"");
  EXPECT_THAT(stampate.back(), testing::MatchesRegex("STARTUP: pagina pronta in [0-9]+ ms"));
}

}  // namespace
}  // namespace pellak::shell
