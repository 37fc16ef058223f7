#include <cerrno>
#include <filesystem>
#include <stdexcept>

#include "PellakCore/Catalogo.h"
#include "PellakCore/base/Json.h"
#include "PellakCore/base/ScanCancelled.h"
#include "fakes/ConMotore.h"

namespace pellak {
namespace {

Finding finding(const std::string& id, std::int64_t size) {
  Finding trovato;
  trovato.id = id;
  trovato.name = id;
  trovato.mode = "delete";
  if (size > 0) trovato.items = {{"/h/" + id, size, 1}};
  return trovato;
}

class EngineTest : public fakes::ConMotore {
 protected:
  EngineTest() : ConMotore(1'750'000'000) {
    fakes::scriviFile(regole, R"({"categories":[
      {"id":"npm-cache","name":"Cache di npm","min_age_days":3},{"id":"extra","name":"Extra","section":"sviluppo"},
      {"id":"di-privacy","section":"privacy"},
      {"id":"brew-cache","name":"Brew"},{"id":"old-installers","name":"Vecchi","min_age_days":1}],
      "duplicates":{"roots":["~"],"exclude_paths":["/altro"]},"large_old":{"top":9}})");
  }

  /// A special scanner that finds one item of one KiB.
  void speciale(
      const std::string& id,
      std::function<void(const ScanContext&)> prima = [](const ScanContext&) {}) {
    tabella.speciali[id] = {"Stato di " + id, [id, prima](const ScanContext& contesto) {
                              prima(contesto);
                              return std::vector<Finding>{finding(id, 1024)};
                            }};
  }

  static void scandisci(Engine& engine, const std::string& quale) {
    ASSERT_TRUE(engine.start(quale));
    engine.attendiFine();
  }

  static const RiassuntoSezione& sezione(const Snapshot& stato, const std::string& id) {
    for (const RiassuntoSezione& riassunto : stato.sezioni) {
      if (riassunto.id == id) return riassunto;
    }
    throw std::logic_error(id);
  }
};

TEST_F(EngineTest, ScansAllSectionsInOrderAndKeepsTheResults) {
  std::vector<std::string> ordine;
  tabella.regole = [&](const ScanContext&, const RegolaCategoria& regola) {
    ordine.push_back(regola.id);
    return finding(regola.id, regola.id == "brew-cache" ? 0 : 2048);
  };
  for (const Meta& meta : metas()) {
    for (const auto id : meta.specials) {
      speciale(std::string(id), [&ordine, id](const ScanContext&) { ordine.emplace_back(id); });
    }
  }
  {
    const auto engine = crea();
    EXPECT_FALSE(engine->snapshot()->busy);
    scandisci(*engine, "all");
    const auto stato = engine->snapshot();
    EXPECT_FALSE(stato->busy);
    EXPECT_EQ(sezione(*stato, "sviluppo").status, "Recuperabili 6.0 KiB.");
    EXPECT_EQ(sezione(*stato, "sviluppo").lastScan, 1'750'000'000);
    EXPECT_EQ(engine->findings("sviluppo").size(), 4U) << "the empty finding is left out";
    EXPECT_EQ(sezione(*stato, "sviluppo").libera, 6144);
    EXPECT_TRUE(sezione(*stato, "sistema").disponibile);
  }
  const std::vector<std::string> attesi = {
      "brew-cache",     "npm-cache",   "extra",           "orphan-node-modules", "docker-disk",
      "app-updates",    "apps",        "app-leftovers",   "duplicates",          "large-old",
      "old-installers", "user-caches", "electron-caches", "trash-volumes",       "saved-states",
      "ds-store",       "di-privacy",  "browser-privacy", "recent-items",        "startup-user",
      "startup-system", "tm-snapshots"};
  EXPECT_EQ(ordine, attesi);
  tabella.speciali.erase("tm-snapshots");
  const auto riaperto = crea();
  EXPECT_FALSE(sezione(*riaperto->snapshot(), "sistema").disponibile);
  EXPECT_TRUE(sezione(*riaperto->snapshot(), "sistema").scandibile);
  EXPECT_EQ(sezione(*riaperto->snapshot(), "sviluppo").status, "Recuperabili 6.0 KiB.");
  EXPECT_EQ(riaperto->findings().size(), 21U);
}

TEST_F(EngineTest, StopEndsTheRunningSectionAndLeavesTheRestUntouched) {
  speciale("apps");
  std::unique_ptr<Engine> engine;
  speciale("duplicates", [&](const ScanContext& contesto) {
    engine->stop();
    if (contesto.stop()) throw ScanCancelled();
  });
  engine = crea();
  scandisci(*engine, "all");
  const auto stato = engine->snapshot();
  EXPECT_FALSE(stato->busy);
  EXPECT_EQ(sezione(*stato, "applicazioni").status, "Recuperabili 1.0 KiB.");
  EXPECT_EQ(sezione(*stato, "duplicati").status, "Scansione interrotta.");
  EXPECT_EQ(sezione(*stato, "grandi").status, "");
  EXPECT_FALSE(sezione(*stato, "grandi").queued);
  scandisci(*engine, "applicazioni");
}

TEST_F(EngineTest, RefusalsTurnAnEmptySectionIntoAWarning) {
  tabella.speciali["recent-items"] = {"...", [](const ScanContext&) {
                                        for (int i = 0; i < 3; ++i) registraDiniego("/x/y/z/w");
                                        return std::vector<Finding>{finding("recent-items", 0)};
                                      }};
  const auto engine = crea();
  scandisci(*engine, "privacy");
  EXPECT_EQ(sezione(*engine->snapshot(), "privacy").status,
            "ATTENZIONE: 3 percorsi non leggibili. Probabile mancanza di permessi, non disco "
            "pulito.");
  EXPECT_NE(engine->snapshot()->testo.str().find(R"([{"cartella":"/x/y/z","quanti":3}])"),
            std::string::npos);
  scandisci(*engine, "avvio");
  EXPECT_EQ(sezione(*engine->snapshot(), "avvio").status, "Niente da segnalare.");
}

TEST_F(EngineTest, WhatGoesWhileItsSectionIsScannedDoesNotComeBack) {
  Finding trovato = finding("apps", 0);
  trovato.items = {{"/h/va", 1, 1}, {"/h/va/sotto", 1, 1}, {"/h/vale", 1, 1}};
  trovato.groups.resize(1);
  trovato.groups[0].size = 30;
  trovato.groups[0].scheda.scrivi().bundle = "editor";
  trovato.groups[0].paths = {"/h/va/x", "/h/b"};
  trovato.groups[0].scheda.scrivi().pesi = {10, 20};
  std::unique_ptr<Engine> engine;
  const auto mostra = [&](const char* testo) {
    return engine->snapshot()->testo.str().find(testo) != std::string::npos;
  };
  bool via = false;
  tabella.speciali["apps"] = {"...", [&](const ScanContext&) {
                                if (via) engine->togli("apps", {"/h/va"});
                                EXPECT_EQ(mostra(R"("path":"/h/va")"), false);
                                return std::vector<Finding>{trovato};
                              }};
  engine = crea();
  scandisci(*engine, "applicazioni");
  EXPECT_TRUE(mostra(R"("path":"/h/va")") && mostra(R"("path":"/h/va/sotto")"));
  via = true;
  scandisci(*engine, "applicazioni");
  EXPECT_FALSE(mostra("/h/va/") || mostra(R"("/h/va")")) << "what is shown, too";
  const Finding rimasto = *engine->finding("apps");
  EXPECT_EQ(rimasto.items.size(), 1U);
  ASSERT_EQ(rimasto.groups.size(), 1U);
  EXPECT_EQ(rimasto.groups[0].paths, std::vector<std::string>{"/h/b"});
  EXPECT_EQ(rimasto.groups[0].size, 20) << "of what is left";
  applicazioni.icone["editor"] = "PNG";
  engine->icona("editor");
  EXPECT_TRUE(mostra(R"("icon_src":"data:image/png;base64,UE5H")")) << "known later";
  via = false;
  scandisci(*engine, "applicazioni");
  EXPECT_TRUE(mostra(R"("path":"/h/va")")) << "only what went during that very scan";
}

TEST_F(EngineTest, AScannerOfItsOwnMayFindNothingOrHaveNothingToLookAt) {
  std::vector<std::string> radici;
  tabella.speciali["large-old"] = {
      "...", [&](const ScanContext& contesto) {
        radici = contesto.regole.grandi.roots;
        EXPECT_EQ(contesto.regole.duplicati.roots.size(), 2U);
        contesto.nota("Nessuna cartella da esaminare.");
        return std::vector<Finding>{finding("large-files", 0), finding("large-old", 0)};
      }};
  tabella.regole = [&](const ScanContext&, const RegolaCategoria& regola) {
    Finding trovato = finding(regola.id, 0);
    if (regola.id == "extra") trovato.trattieni("/nas", "volume di rete");
    return trovato;
  };
  const auto engine = crea();
  ASSERT_TRUE(engine->start("grandi", false, {"/in/piu"}));
  engine->attendiFine();
  EXPECT_EQ(radici, std::vector<std::string>{"/in/piu"});
  EXPECT_EQ(engine->findings("grandi").size(), 2U) << "both lists are there, empty or not";
  EXPECT_EQ(sezione(*engine->snapshot(), "grandi").status, "Nessuna cartella da esaminare.");
  scandisci(*engine, "sviluppo");
  ASSERT_EQ(engine->findings("sviluppo").size(), 1U);
  EXPECT_NE(
      engine->snapshot()->testo.str().find(
          R"("groups":[],"libera":0,"perche_no":[{"percorso":"/nas","perche":"volume di rete"}]})"),
      std::string::npos);
}

TEST_F(EngineTest, AFailingCategoryKeepsWhatItHadFoundAndOnlyThat) {
  bool secondo = false;
  speciale("docker-disk", [&](const ScanContext&) {
    if (secondo) throw std::runtime_error("disco in fiamme");
  });
  tabella.regole = [&](const ScanContext&, const RegolaCategoria& regola) {
    if (secondo && regola.id == "npm-cache") throw std::runtime_error("guasto");
    return finding(regola.id, secondo ? 0 : 1024);
  };
  const auto engine = crea();
  scandisci(*engine, "sviluppo");
  secondo = true;
  scandisci(*engine, "sviluppo");
  EXPECT_EQ(sezione(*engine->snapshot(), "sviluppo").status, "Errore: disco in fiamme");
  const auto rimasti = engine->findings("sviluppo");
  ASSERT_EQ(rimasti.size(), 2U);
  EXPECT_EQ(rimasti[0].finding.id, "npm-cache");
  EXPECT_EQ(rimasti[1].finding.id, "docker-disk");
}

TEST_F(EngineTest, WithoutRulesTheOldFindingsStayAndTheStatusSaysWhy) {
  tabella.regole = [&](const ScanContext&, const RegolaCategoria& regola) {
    return finding(regola.id, 1024);
  };
  speciale("docker-disk");
  const auto engine = crea();
  scandisci(*engine, "sviluppo");
  scandisci(*engine, "privacy");
  std::filesystem::remove(regole);
  scandisci(*engine, "sviluppo");
  EXPECT_EQ(sezione(*engine->snapshot(), "sviluppo").status,
            "Errore: file delle regole illeggibile");
  EXPECT_EQ(engine->findings("sviluppo").size(), 4U);
  scandisci(*engine, "privacy");
  EXPECT_EQ(sezione(*engine->snapshot(), "privacy").status, "Errore: file delle regole illeggibile")
      << "a rule had joined it";
}

TEST_F(EngineTest, ASaveTakesOverWhatAnotherProcessScannedSince) {
  speciale("startup-user");
  speciale("recent-items");
  const auto questo = crea();
  {
    const auto altro = crea();
    scandisci(*altro, "privacy");
  }
  questo->save();
  EXPECT_EQ(questo->findings("privacy").size(), 1U);
  EXPECT_EQ(crea()->findings("privacy").size(), 1U);
}

TEST_F(EngineTest, ResultsThatCannotBeReadJustNowAreNeitherReplacedNorPutAside) {
  speciale("startup-user");
  speciale("recent-items");
  scandisci(*crea(), "avvio");
  const std::string prima = fakes::leggiFile(store.risultati());
  files.nonLetto = Error{ErrorKind::failed, EMFILE, "EMFILE", {}};
  const auto engine = crea();
  scandisci(*engine, "privacy");
  EXPECT_EQ(fakes::leggiFile(store.risultati()), prima);
  EXPECT_EQ(sezione(*engine->snapshot(), "privacy").status,
            "Recuperabili 1.0 KiB. Risultati non salvati: errore di sistema (EMFILE).");
  files.nonLetto.reset();
  engine->save();
  EXPECT_EQ(sezione(*engine->snapshot(), "privacy").status, "Recuperabili 1.0 KiB.");
  EXPECT_EQ(crea()->findings().size(), 2U) << "those of before and the new ones";
  EXPECT_FALSE(std::filesystem::exists(store.risultati() + ".guasto"));
}

TEST_F(EngineTest, AProgressLineIsNeverSavedAsAResult) {
  std::unique_ptr<Engine> engine;
  std::string durante;
  speciale("startup-user", [&](const ScanContext&) {
    engine->save();
    durante = fakes::leggiFile(store.risultati());
  });
  engine = crea();
  scandisci(*engine, "avvio");
  scandisci(*engine, "avvio");
  EXPECT_NE(durante.find("Recuperabili 1.0 KiB."), std::string::npos);
  EXPECT_EQ(durante.find("Stato di"), std::string::npos);
}

TEST_F(EngineTest, SizesOfADamagedFileStopNothing) {
  std::string voci;
  for (int i = 0; i < 1100; ++i) {
    voci += std::string(i == 0 ? "" : ",") + R"({"path":"/x","size":9007199254740992})";
  }
  fakes::scriviFile(store.risultati(),
                    R"({"avvio":{"ts":1,"findings":[{"id":"a","items":[)" + voci + "]}]}}");
  const auto engine = crea();
  EXPECT_EQ(sezione(*engine->snapshot(), "avvio").totale, INT64_MAX);
}

TEST_F(EngineTest, SettingsAreWrittenOverTheRules) {
  const auto corpo = JsonDocument::parse(
      R"({"installer_age_days":0,"dup_min_mb":7,"dup_exclude":["/no"],"large_min_mb":300,)"
      R"("large_age_days":40})");
  ASSERT_TRUE(impostazioni.scrivi(corpo->radice()).ok());
  const auto engine = crea();
  const Regole effettive = engine->effectiveRules();
  EXPECT_EQ(effettive.cerca("old-installers")->minAgeDays, 0);
  EXPECT_EQ(effettive.cerca("npm-cache")->minAgeDays, 3) << "a category without a setting";
  EXPECT_EQ(effettive.duplicati.minSizeMb, 7);
  EXPECT_EQ(effettive.duplicati.excludePaths, std::vector<std::string>{"/no"});
  EXPECT_EQ(effettive.duplicati.roots, std::vector<std::string>{"~"});
  EXPECT_EQ(effettive.grandi.minSizeMb, 300);
  EXPECT_EQ(effettive.grandi.minAgeDays, 40);
  EXPECT_EQ(effettive.grandi.top, 9);
}

TEST_F(EngineTest, IconsAreMadeOnceAndKeptInTheirFile) {
  fakes::scriviFile(store.icone(), "boh");
  applicazioni.icone["editor"] = "PNGDATI";
  {
    const auto engine = crea();
    EXPECT_EQ(engine->icona("editor"), "data:image/png;base64,UE5HREFUSQ==");
    EXPECT_EQ(engine->icona("editor"), "data:image/png;base64,UE5HREFUSQ==");
    EXPECT_EQ(engine->icona("ignota"), "");
    EXPECT_EQ(engine->icona("ignota"), "");
  }
  EXPECT_EQ(applicazioni.iconeDisegnate, 2);
  applicazioni.icone.clear();
  EXPECT_EQ(crea()->icona("editor"), "data:image/png;base64,UE5HREFUSQ==");
}

thread_local bool inDisparte = false;

TEST_F(EngineTest, OnlyThePeriodicCheckScansInTheBackground) {
  std::vector<bool> come;
  tabella.speciali["apps"] = {"...", [&](const ScanContext&) {
                                come.push_back(inDisparte);
                                return std::vector<Finding>{};
                              }};
  sfondo = [] { inDisparte = true; };
  const auto engine = crea();
  for (const bool automatica : {true, false}) {
    ASSERT_TRUE(engine->start("applicazioni", automatica));
    engine->attendiFine();
  }
  EXPECT_EQ(come, (std::vector<bool>{true, false}));
}

}  // namespace
}  // namespace pellak
