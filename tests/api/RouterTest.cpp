#include <atomic>
#include <filesystem>
#include <thread>
#include <vector>

#include "api/Richieste.h"

namespace pellak::api {
namespace {

class RouterTest : public Richieste {};

TEST_F(RouterTest, WhichRoutesAreSlowAndWhichChangeFindings) {
  std::string lente;
  std::string mutevoli;
  for (const Rotta& rotta : rotte()) {
    const std::string nome(rotta.percorso.substr(rotta.percorso.find('/', 1)));
    if (Router::codaDi(rotta.percorso) == Coda::lenta) lente += nome;
    if (rotta.mutating) mutevoli += nome;
  }
  EXPECT_EQ(lente, "/manutenzione/energia/regolazioni");
  EXPECT_EQ(mutevoli, "/trash/keep/keep_all/trash_sel/trash_group/dup_scarta/restore");
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
  std::vector<std::string> corpi = {"{}", "[]", R"([{"path":"/"}])", "7", "null", "true", R"("x")"};
  for (const std::string& valore : std::vector<std::string>{
           "null", "true", "-1", "9223372036854775807", "-9223372036854775808", "1e308", "0.5",
           "[]", R"([null,1,"x",{}])", R"({"a":1})", std::string(200, '[') + std::string(200, ']'),
           R"("'; $(id) \" \\ \n\r\u0000\u2028\ud83d\ude00\uef80\uefff")", R"("../../../../..")",
           R"("~")", R"("all")", "\"" + std::string(1U << 20U, 'x') + "\"",
           "\"/" + std::string(1U << 20U, '/') + "a\""}) {
    corpi.push_back(ovunque(valore));
  }
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
