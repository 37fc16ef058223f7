#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <map>

#include "PellakCore/CopiaTenuta.h"
#include "PellakCore/base/Esadecimale.h"
#include "api/Richieste.h"

namespace pellak::api {
namespace {

namespace fs = std::filesystem;

constexpr const char* kHashX = "2d711642b726b04401627ca9fbac32f5c8530fb1903cc4db02258717921a4881";

class RotteCestinoTest : public Richieste {
 protected:
  RotteCestinoTest() {
    ::setenv("HOME", home.percorso().c_str(), 1);
    ::unsetenv("XDG_DATA_HOME");
  }

  /// Every file of the user's, with its content: neither ours nor the Trash's.
  std::map<std::string, std::string> utente() const {
    std::map<std::string, std::string> visti;
    for (const auto& voce : fs::recursive_directory_iterator(home / "dati")) {
      const std::string percorso = voce.path().string();
      if (fs::is_symlink(voce.symlink_status())) {
        visti[percorso] = "-> " + fs::read_symlink(voce.path()).string();
      } else if (voce.is_regular_file()) {
        visti[percorso] = fakes::leggiFile(percorso);
      }
    }
    return visti;
  }

  std::size_t nelCestino(const std::string& cartella) const {
    return fakes::quanteVoci(home / ".local/share/Trash/" + cartella);
  }

  std::string primaOp() {
    const auto documento = JsonDocument::parse(rispondi("/api/log").testo.str());
    std::string id;
    documento->radice()["ops"].perOgni([&](Json op) {
      if (id.empty()) id = op.testo("id");
    });
    return id;
  }

  static Finding categoria(std::vector<std::string> percorsi) {
    Finding finding;
    finding.id = "duplicates";
    finding.name = "Prova";
    finding.mode = "delete";
    for (std::string& percorso : percorsi) finding.items.push_back({std::move(percorso), 10, 0});
    return finding;
  }

  Finding copie() {
    Finding finding = categoria({});
    Group gruppo;
    gruppo.size = 1;
    daEsadecimale(kHashX, gruppo.hash);
    for (const char* nome : {"dati/a", "dati/b", "dati/c"}) {
      fakes::scriviFile(home / nome, "x");
      gruppo.paths.push_back(home / nome);
    }
    finding.groups.push_back(gruppo);
    return finding;
  }
};

TEST_F(RotteCestinoTest, ACategoryMovesIsLoggedAndComesBackWhateverTheNames) {
  const std::string strano = home / "dati/\xff\n%\" nome";
  fakes::scriviFile(strano, "uno");
  fakes::scriviFile(home / "dati/q/doc.pdf", "due");
  fakes::scriviFile(home / "dati/r/doc.pdf", "tre");
  fakes::scriviFile(home / "dati/resta", "resta");
  fs::create_symlink(home / "dati/resta", home / "dati/link");
  const auto prima = utente();
  trova(categoria({strano, home / "dati/q/doc.pdf", home / "dati/r/doc.pdf", home / "dati/link",
                   home / "dati/sparito"}));
  scandisci("duplicati");
  const std::string mosse = chiedi("/api/trash", R"({"id":"duplicates"})");
  EXPECT_EQ(mosse, R"(200 {"ok":4,"failed":[{"percorso":")" + (home / "dati/sparito") +
                       R"(","err":"non esiste piu': era gia' stato rimosso"}],"op":")" + primaOp() +
                       R"(","tot":40})");
  EXPECT_EQ(suoni, 1);
  EXPECT_TRUE(motore().finding("duplicates")->vuoto()) << "what is gone is not listed either";
  EXPECT_EQ(utente(), (std::map<std::string, std::string>{{home / "dati/resta", "resta"}}));
  EXPECT_EQ(nelCestino("files"), 4U);
  EXPECT_EQ(nelCestino("info"), 4U);
  EXPECT_FALSE(fs::exists(store.cartella() + "/cestino-intento.json"));
  EXPECT_EQ(chiedi("/api/restore", R"({"op":")" + primaOp() + R"("})"),
            R"(200 {"ok":true,"items":4,"errors":[],"percorsi":[")" + (home / "dati/") +
                "\uefff\\n%\\\" nome\",\"" + (home / "dati/q/doc.pdf") + "\",\"" +
                (home / "dati/r/doc.pdf") + "\",\"" + (home / "dati/link") + "\"]}");
  EXPECT_EQ(utente(), prima);
  EXPECT_EQ(nelCestino("files") + nelCestino("info"), 0U);
  EXPECT_NE(chiedi("/api/log").find(R"("rip":true)"), std::string::npos);
  EXPECT_EQ(chiedi("/api/restore", R"({"op":")" + primaOp() + R"(","index":0})").substr(0, 30),
            R"(200 {"ok":true,"items":0,"erro)");
  EXPECT_EQ(utente(), prima);
}

TEST_F(RotteCestinoTest, ATakenPlaceGetsANumberBeforeTheExtension) {
  fakes::scriviFile(home / "dati/report.pdf", "vecchio");
  trova(categoria({home / "dati/report.pdf"}));
  scandisci("duplicati");
  chiedi("/api/trash", R"({"id":"duplicates"})");
  fakes::scriviFile(home / "dati/report.pdf", "un altro");
  fakes::scriviFile(home / "dati/report (ripristinato 1).pdf", "anche");
  const std::string dove = home / "dati/report (ripristinato 2).pdf";
  EXPECT_EQ(chiedi("/api/restore", R"({"op":")" + primaOp() + R"("})"),
            R"(200 {"ok":true,"items":1,"errors":[],"percorsi":[")" + dove +
                R"("],"rinominati":[")" + dove + "\"]}");
  EXPECT_EQ(utente(), (std::map<std::string, std::string>{
                          {home / "dati/report.pdf", "un altro"},
                          {home / "dati/report (ripristinato 1).pdf", "anche"},
                          {home / "dati/report (ripristinato 2).pdf", "vecchio"}}));
}

TEST_F(RotteCestinoTest, WhatMovedIsToldWhenTheIntentForTheRestFindsNoRoom) {
  for (const char* nome : {"dati/a", "dati/b"}) fakes::scriviFile(home / nome, nome);
  trova(categoria({home / "dati/a", home / "dati/b"}));
  scandisci("duplicati");
  // A record without its item: the name for "b" is seen to be taken only when it is to move.
  fakes::scriviFile(home / ".local/share/Trash/info/b.trashinfo", "");
  files.scritture = 1;
  const std::string mosse = chiedi("/api/trash", R"({"id":"duplicates"})");
  EXPECT_EQ(mosse, R"(200 {"ok":1,"failed":[{"percorso":")" + (home / "dati/b") +
                       R"(","err":"spazio esaurito sul volume: elemento non spostato"}],"op":")" +
                       primaOp() + R"(","tot":10})");
  EXPECT_EQ(utente(), (std::map<std::string, std::string>{{home / "dati/b", "dati/b"}}));
}

TEST_F(RotteCestinoTest, TheLastCopyStaysAndAChangedOneIsNoCopy) {
  trova(copie());
  scandisci("duplicati");
  const auto prima = utente();
  const std::string tutte =
      "[\"" + (home / "dati/a") + "\",\"" + (home / "dati/b") + "\",\"" + (home / "dati/c") + "\"]";
  EXPECT_EQ(chiedi("/api/dup_scarta", R"({"group":0,"paths":)" + tutte + "}"),
            R"(409 {"err":"sarebbe l'ultima copia: non la cestino"})");
  EXPECT_EQ(chiedi("/api/trash_sel", R"({"id":"duplicates","groups":[0]})"),
            R"(409 {"err":"sarebbe l'ultima copia: non la cestino"})");
  EXPECT_EQ(chiedi("/api/keep", R"({"group":1})"), R"(200 {"err":"gruppo inesistente"})");
  EXPECT_EQ(utente(), prima);
  fakes::scriviFile(home / "dati/a", "y");
  EXPECT_EQ(chiedi("/api/keep", R"({"group":0,"keep":")" + (home / "dati/a") + R"("})"),
            R"(200 {"err":"lo stato è cambiato: ricarica e riprova"})");
  fs::remove(home / "dati/b");
  fs::create_hard_link(home / "dati/c", home / "dati/b");
  EXPECT_EQ(chiedi("/api/keep", R"({"group":0,"keep":")" + (home / "dati/c") + R"("})"),
            R"(200 {"err":"lo stato è cambiato: ricarica e riprova"})");
  EXPECT_EQ(nelCestino("files"), 0U);
}

TEST_F(RotteCestinoTest, ACopyThatChangesAtTheLastMomentIsNotReliedOn) {
  trova(copie());
  scandisci("duplicati");
  files.primaDiScrivere = [&](std::string_view percorso) {
    if (percorso == store.intento()) fakes::scriviFile(home / "dati/a", "y");
  };
  const std::string risposta =
      chiedi("/api/keep", R"({"group":0,"keep":")" + (home / "dati/a") + R"("})");
  EXPECT_TRUE(risposta.starts_with(R"(200 {"ok":0,"failed":[{"percorso":)")) << risposta;
  EXPECT_EQ(utente().size(), 3U);
}

TEST_F(RotteCestinoTest, WhatCannotBeMeantMovesNothing) {
  Finding finding = copie();
  finding.items = {{home / "dati/a", 1, 0}};
  trova(finding);
  scandisci("duplicati");
  const std::string a = "\"" + (home / "dati/a") + "\"";
  const std::string prima = R"({"group":0,"first":)" + a;
  const std::string cambiato = R"(200 {"err":"lo stato è cambiato: ricarica e riprova"})";
  const std::string nonValida = R"(400 {"err":"richiesta non valida"})";
  const std::string selezione = R"(200 {"err":"selezione non valida"})";
  const std::string inesistente = R"(200 {"err":"gruppo inesistente"})";
  struct Caso {
    const char* rotta;
    std::string corpo;
    std::string risposta;
  };
  const Caso casi[] = {
      {"/api/trash", R"({"id":"duplicates","items":"x"})", nonValida},
      {"/api/trash", R"({"id":"duplicates","items":[)" + a + ",5]}", nonValida},
      {"/api/trash_group", R"({"id":"duplicates","group":"0","first":)" + a + "}", inesistente},
      {"/api/trash_sel", R"({"id":"duplicates","groups":[0,"0"]})", selezione},
      {"/api/trash_sel", R"({"id":"duplicates","groups":[0],"firsts":["/altro"]})", cambiato},
      {"/api/trash_sel", R"({"id":"duplicates","groups":[0],"firsts":[]})", selezione},
      {"/api/trash_sel", R"({"id":"duplicates","groups":[0],"firsts":)" + a + "}", nonValida},
      {"/api/keep", R"({"group":true})", inesistente},
      {"/api/keep", R"({"group":0,"keep":7})", nonValida},
      {"/api/keep", R"({"group":0,"first":null})", nonValida},
      {"/api/keep_all", R"({"scelte":"x"})", nonValida},
      {"/api/keep_all", R"({"scelte":[)" + prima + "},7]}", nonValida},
      {"/api/keep_all", R"({"scelte":[{"group":"0"}]})", inesistente},
      {"/api/keep_all", R"({"scelte":[{"group":0,"first":"/altro"}]})", cambiato},
      {"/api/keep_all", R"({"scelte":[)" + prima + R"(,"keep":"/altro"}]})",
       R"(200 {"err":"nessuna copia corrisponde"})"},
      {"/api/keep_all", R"({"scelte":[)" + prima + "}," + prima + "}]}", selezione},
      {"/api/keep_all", R"({"scelte":[]})", R"(200 {"err":"niente da cestinare"})"},
      {"/api/dup_scarta", R"({"id":7,"group":0,"paths":[)" + a + "]}", nonValida},
      {"/api/dup_scarta", R"({"group":0,"paths":[)" + a + ",7]}", nonValida},
  };
  for (const Caso& caso : casi) {
    EXPECT_EQ(chiedi(caso.rotta, caso.corpo), caso.risposta) << caso.rotta << caso.corpo;
  }
  motore().modificaFinding("duplicates", [](Finding& f) { f.mode = "report"; });
  for (const Rotta& rotta : rotte()) {
    if (!rotta.mutating || rotta.percorso == "/api/restore") continue;
    EXPECT_EQ(chiedi(rotta.percorso, R"({"id":"duplicates","groups":[0],"paths":[)" + a + "]," +
                                         prima.substr(1) + "}"),
              R"(200 {"err":"categoria non cestinabile"})")
        << rotta.percorso;
  }
  EXPECT_EQ(utente().size(), 3U);
}

TEST_F(RotteCestinoTest, OneRuleSaysWhichGoodCopyStays) {
  Finding finding = copie();
  finding.groups[0].identita.resize(3);
  finding.groups[0].identita[0].svantaggi = kDiPassaggio;
  finding.groups[0].identita[2].mtimeNs = 1;
  finding.groups.push_back(finding.groups[0]);
  for (std::string& percorso : finding.groups[1].paths) {
    percorso += '2';
    fakes::scriviFile(percorso, "x");
  }
  trova(finding);
  scandisci("duplicati");
  EXPECT_THAT(chiedi("/api/state"), testing::HasSubstr(R"("tieni":")" + (home / "dati/b") + "\"}"));
  EXPECT_THAT(chiedi("/api/keep", R"({"group":1})"), testing::StartsWith(R"(200 {"ok":2,)"));
  fakes::scriviFile(home / "dati/b", "y");
  EXPECT_THAT(
      chiedi("/api/keep_all"),
      testing::MatchesRegex(R"(200 ."ok":1,"failed":.."percorso":"[^"]*/b","err":"lo stato.*)"
                            R"(,"tot":1,"quante":1,"saltati":.].)"));
  EXPECT_EQ(utente(),
            (std::map<std::string, std::string>{
                {home / "dati/b", "y"}, {home / "dati/b2", "x"}, {home / "dati/c", "x"}}));
}

TEST_F(RotteCestinoTest, KeepAllMovesNoChosenCopyEvenIfItStandsInTwoSets) {
  Finding finding = copie();
  finding.groups.push_back(finding.groups[0]);
  finding.groups.push_back(finding.groups[0]);
  finding.groups[0].paths.pop_back();
  finding.groups[1].paths = {home / "dati/a", home / "dati/c"};
  trova(finding);
  scandisci("duplicati");
  EXPECT_THAT(chiedi("/api/keep_all", R"({"scelte":[{"group":0},{"group":1,"keep":")" +
                                          (home / "dati/c") + R"("}]})"),
              testing::StartsWith(R"(200 {"ok":1,"failed":[])"));
  EXPECT_EQ(utente(),
            (std::map<std::string, std::string>{{home / "dati/a", "x"}, {home / "dati/c", "x"}}));
}

TEST_F(RotteCestinoTest, WhatTheHomeAndTheTrashAreMadeOfIsRefused) {
  fakes::scriviFile(store.cartella() + "/impostazioni.json", "{}");
  fs::create_directories(home / ".local/share/Trash/files/x");
  fakes::scriviFile(home / "dati/vero/dentro", "z");
  fs::create_symlink(home / "dati/vero", home / "dati/falso");
  std::vector<std::string> percorsi = {home.percorso(),
                                       "/",
                                       "/usr",
                                       home / "Library/Application Support",
                                       store.cartella(),
                                       store.cartella() + "/impostazioni.json",
                                       home / ".local/share/Trash",
                                       home / ".local/share/Trash/files/x",
                                       home / "dati/../dati/vero"};
  for (const char* dentro : {"System", "bin", "sbin", "lib", "lib32", "lib64", "libx32", "boot",
                             "dev", "proc", "sys", "etc", "private/etc", "private/var/db",
                             "usr/bin", "usr/lib", "usr/sbin", "usr/libexec", "usr/share"}) {
    percorsi.push_back("/" + std::string(dentro) + "/env");
  }
  for (const char* inCasa : {"Desktop", "Documents", "Downloads", "Library", "Library/Caches",
                             "Movies", "Music", "Pictures", "Public", "Templates", "Videos",
                             ".config", ".local", ".cache", "Applications"}) {
    percorsi.push_back(home / inCasa);
  }
  const std::size_t vietati = percorsi.size();
  percorsi.push_back(home / "dati/falso/dentro");
  trova(categoria(percorsi));
  scandisci("duplicati");
  const std::string risposta = chiedi("/api/trash", R"({"id":"duplicates"})");
  EXPECT_EQ(risposta.substr(0, 11), "200 {\"ok\":0");
  std::size_t rifiuti = 0;
  for (std::size_t i = 0; (i = risposta.find("percorso non valido", i)) != std::string::npos; ++i) {
    ++rifiuti;
  }
  EXPECT_EQ(rifiuti, vietati) << risposta;
  EXPECT_EQ(fakes::leggiFile(home / "dati/vero/dentro"), "z") << "reached through a link";
  EXPECT_FALSE(fs::exists(store.registro()));
}

}  // namespace
}  // namespace pellak::api
