#include <atomic>
#include <filesystem>
#include <thread>
#include <vector>

#include "api/Richieste.h"

namespace pellak::api {
namespace {

class RouterTest : public Richieste {};

TEST_F(RouterTest, TheTableHoldsTheRoutesInTheirOrder) {
  const std::vector<std::string_view> attese = {"/api/state",
                                                "/api/log",
                                                "/api/icon",
                                                "/api/icons",
                                                "/api/mappa",
                                                "/api/brew_upgrade",
                                                "/api/apri",
                                                "/api/mostra",
                                                "/api/update",
                                                "/api/update/scarica",
                                                "/api/update/installa",
                                                "/api/update/stato",
                                                "/api/app_upd_avvia",
                                                "/api/app_upd_stato",
                                                "/api/app_dl",
                                                "/api/perms",
                                                "/api/perms/fda",
                                                "/api/perms/automation",
                                                "/api/app_attiva",
                                                "/api/chiudi_app",
                                                "/api/manutenzione",
                                                "/api/processi",
                                                "/api/energia",
                                                "/api/batteria/viva",
                                                "/api/batteria",
                                                "/api/rete",
                                                "/api/rete/conn",
                                                "/api/firewall",
                                                "/api/firewall/applica",
                                                "/api/processi/chiudi",
                                                "/api/regolazioni",
                                                "/api/settings",
                                                "/api/scan",
                                                "/api/stop",
                                                "/api/trash",
                                                "/api/avvio",
                                                "/api/voci",
                                                "/api/keep",
                                                "/api/keep_all",
                                                "/api/trash_sel",
                                                "/api/trash_group",
                                                "/api/dup_scarta",
                                                "/api/reveal",
                                                "/api/restore"};
  std::vector<std::string_view> percorsi;
  std::vector<std::string_view> lente;
  std::vector<std::string_view> mutevoli;
  for (const Rotta& rotta : rotte()) {
    percorsi.push_back(rotta.percorso);
    if (Router::codaDi(rotta.percorso) == Coda::lenta) lente.push_back(rotta.percorso);
    if (rotta.mutating) mutevoli.push_back(rotta.percorso);
  }
  EXPECT_EQ(percorsi, attese);
  EXPECT_EQ(lente, (std::vector<std::string_view>{"/api/manutenzione", "/api/energia",
                                                  "/api/regolazioni"}));
  EXPECT_EQ(mutevoli, (std::vector<std::string_view>{"/api/trash", "/api/keep", "/api/keep_all",
                                                     "/api/trash_sel", "/api/trash_group",
                                                     "/api/dup_scarta", "/api/restore"}));
}

TEST_F(RouterTest, UnknownRoutesAndNearMissesAreNotFound) {
  for (const std::string_view rotta :
       {"", "/", "/api/", "api/state", "/api/State", "/api/state/", "/api/state ", "/api/updat",
        "/api/update/", "/api/keep_", "/api/\xff"}) {
    EXPECT_EQ(chiedi(rotta), R"(404 {"err":"not found"})") << rotta;
    EXPECT_EQ(Router::codaDi(rotta), Coda::ordinaria);
  }
  EXPECT_EQ(chiedi(std::string_view("/api/state\0", 11)), R"(404 {"err":"not found"})");
}

/// Every key that any route reads, with the same value.
std::string ovunque(const std::string& valore) {
  std::string corpo = "{";
  for (const std::string_view chiave :
       {"ver",     "key",    "keys",   "path",       "force",       "cask",       "url",
        "name",    "app",    "bundle", "task",       "lowpower",    "pid",        "azioni",
        "chiave",  "valore", "reset",  "dup_min_mb", "dup_exclude", "login_item", "menu_disk",
        "section", "id",     "group",  "groups",     "attivo",      "delete",     "voci",
        "ordine",  "da",     "quante", "keep",       "first",       "items",      "paths",
        "op",      "index"}) {
    corpo += "\"" + std::string(chiave) + "\":" + valore + ",";
  }
  corpo.back() = '}';
  return corpo;
}

TEST_F(RouterTest, EveryRouteAnswersEveryBodyWithAnObject) {
  const std::string profondo = std::string(200, '[') + std::string(200, ']');
  const std::vector<std::string> corpi = {
      "{}",
      "[]",
      "[{\"path\":\"/\"}]",
      "7",
      "null",
      "true",
      "\"/api/state\"",
      ovunque("null"),
      ovunque("true"),
      ovunque("-1"),
      ovunque("9223372036854775807"),
      ovunque("-9223372036854775808"),
      ovunque("1e308"),
      ovunque("0.5"),
      ovunque("[]"),
      ovunque("[null,1,\"x\",{}]"),
      ovunque("{\"a\":1}"),
      ovunque(profondo),
      ovunque(R"("'; $(id) \" \\ \n\r\u0000\u2028\ud83d\ude00\uef80\uefff")"),
      ovunque("\"../../../../..\""),
      ovunque("\"~\""),
      ovunque("\"all\""),
      ovunque("\"" + std::string(1U << 20U, 'x') + "\""),
      ovunque("\"/" + std::string(1U << 20U, '/') + "a\"")};
  for (const std::string& corpo : corpi) {
    for (const Rotta& rotta : rotte()) {
      const Risposta risposta = rispondi(rotta.percorso, corpo);
      const std::string testo = risposta.testo.str();
      const auto documento = JsonDocument::parse(testo);
      ASSERT_TRUE(documento.ok()) << rotta.percorso << " " << corpo.substr(0, 200);
      EXPECT_TRUE(documento->radice().oggetto());
      const bool riuscita = documento->radice().testo("err").empty();
      const bool operazione = rotta.percorso == "/api/restore" && risposta.stato == 404;
      const bool rifiuto = operazione || risposta.stato == 400 || risposta.stato == 403;
      EXPECT_TRUE(risposta.stato == 200 || (rifiuto && !riuscita))
          << rotta.percorso << " " << corpo.substr(0, 200) << " " << testo.substr(0, 200);
    }
    motore().attendiFine();
  }
}

TEST_F(RouterTest, AMutatingRouteMovesTheVersionAndSavesEvenWhenItFails) {
  std::int64_t ver = motore().snapshot()->ver;
  for (const Rotta& rotta : rotte()) {
    std::filesystem::remove(store.risultati());
    const std::string prima = std::string(rotta.percorso);
    if (prima == "/api/scan") continue;
    rispondi(rotta.percorso, R"({"id":"nessuno","group":9})");
    const std::int64_t dopo = motore().snapshot()->ver;
    EXPECT_EQ(dopo > ver, rotta.mutating) << prima;
    EXPECT_EQ(std::filesystem::exists(store.risultati()), rotta.mutating) << prima;
    ver = dopo;
  }
}

TEST_F(RouterTest, RequestsOfSeveralThreadsAreAllAnswered) {
  Finding finding;
  finding.id = "duplicates";
  for (int i = 0; i < 300; ++i) finding.items.push_back({"/h/" + std::to_string(i), i, 1});
  trova(finding);
  Router tutte = router();
  std::atomic<int> buone{0};
  const auto lavora = [&](std::string_view prima, std::string_view poi) {
    const auto documento = JsonDocument::parse(R"({"id":"duplicates","menu_ram":false})");
    for (int i = 0; i < 50; ++i) {
      for (const std::string_view rotta : {prima, poi}) {
        const Risposta risposta = tutte.handle(rotta, documento->radice());
        if (JsonDocument::parse(risposta.testo.str()) && risposta.stato == 200) ++buone;
      }
    }
  };
  std::vector<std::thread> fili;
  fili.emplace_back(lavora, "/api/state", "/api/voci");
  fili.emplace_back(lavora, "/api/scan", "/api/trash");
  fili.emplace_back(lavora, "/api/settings", "/api/stop");
  fili.emplace_back(lavora, "/api/icon", "/api/perms");
  for (std::thread& filo : fili) filo.join();
  motore().attendiFine();
  EXPECT_EQ(buone, 400);
}

}  // namespace
}  // namespace pellak::api
