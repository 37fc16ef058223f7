#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "commands/Apici.h"
#include "commands/Comandi.h"
#include "fakes/FakeClock.h"
#include "fakes/ScriptedLauncher.h"
#include "platform/posix/ClockPosix.h"
#include "platform/posix/ProcessLauncherPosix.h"

namespace pellak {
namespace {

using fakes::FakeClock;
using fakes::ScriptedLauncher;
using fakes::ScriptedReply;
using testing::ElementsAre;
using namespace std::chrono_literals;

std::string limitSentence(const std::string& minuti) {
  return "l'operazione non si è conclusa entro " + minuti +
         " minuti: l'ho interrotta, niente è stato lasciato a metà dal programma";
}

/// Scripted programs; waiting for a reader takes real time, everything else none.
class ComandiTest : public testing::Test {
 protected:
  EsitoShell shellReply(ScriptedReply reply, bool admin = false,
                        FamigliaStrumenti famiglia = FamigliaStrumenti::macos) {
    launcher.answerAll(std::move(reply));
    return Comandi(launcher, clock, famiglia).eseguiShell("comando", admin, 30);
  }

  FakeClock clock{0.0, 20ms};
  ScriptedLauncher launcher{&clock};
  Comandi macos{launcher, clock, FamigliaStrumenti::macos};
  Comandi linux_{launcher, clock, FamigliaStrumenti::linux};
};

/// Real programs.
class ComandiRealTest : public testing::Test {
 protected:
  posix::ProcessLauncherPosix launcher;
  posix::ClockPosix clock;
  Comandi comandi{launcher, clock, FamigliaStrumenti::linux};
};

TEST_F(ComandiTest, EseguiReadsFirstAndThenWaits) {
  launcher.answer("/bin/ps -ax", {.output = "righe\n", .error = "avviso\n", .fine = {false, 4}});
  const EsitoComando esito = macos.esegui("/bin/ps", {"-ax"});
  EXPECT_EQ(esito.stato, 4);
  EXPECT_EQ(esito.testo, "righe\navviso\n");
  EXPECT_THAT(launcher.eventNames(), ElementsAre("start", "readOutput", "wait"));
  EXPECT_EQ(launcher.requests().at(0).flussi, ChildStreams::merged);
}

TEST_F(ComandiTest, CommandLinesOfTheMacosFamily) {
  const std::string comando = R"(echo "a \n b")";
  launcher.answerAll({});
  EXPECT_TRUE(macos.eseguiShell(comando, false, 30).ok);
  EXPECT_TRUE(macos.eseguiShell(comando, true, 30).ok);
  EXPECT_EQ(macos.eseguiAdmin(comando), std::nullopt);
  const auto requests = launcher.requests();
  EXPECT_EQ(requests.at(0).percorso, "/bin/sh");
  EXPECT_THAT(requests.at(0).argomenti, ElementsAre("-c", comando));
  EXPECT_EQ(requests.at(1).percorso, "/usr/bin/osascript");
  EXPECT_THAT(
      requests.at(1).argomenti,
      ElementsAre("-e", R"(do shell script "echo \"a \n b\"" with administrator privileges)"));
  EXPECT_EQ(requests.at(1).flussi, ChildStreams::separate);
  EXPECT_EQ(requests.at(2).percorso, "/usr/bin/osascript");
  EXPECT_THAT(
      requests.at(2).argomenti,
      ElementsAre("-e", R"(do shell script "echo \"a \\n b\"" with administrator privileges)"));
  EXPECT_EQ(requests.at(2).flussi, ChildStreams::errorOnly);
}

TEST_F(ComandiTest, CommandLinesOfTheLinuxFamily) {
  const std::string comando = R"(echo "a \n b")";
  launcher.answerAll({});
  EXPECT_TRUE(linux_.eseguiShell(comando, true, 30).ok);
  EXPECT_EQ(linux_.eseguiAdmin(comando), std::nullopt);
  for (const LaunchRequest& request : launcher.requests()) {
    EXPECT_EQ(request.percorso, "/usr/bin/pkexec");
    EXPECT_THAT(request.argomenti, ElementsAre("/bin/sh", "-c", comando));
    EXPECT_TRUE(request.ambiente.empty());
  }
}

TEST_F(ComandiTest, ShellErrorIsTheFirstRowThatFits) {
  const auto errore = [this](std::string text) {
    return shellReply({.error = std::move(text), .fine = {false, 1}}).errore;
  };
  EXPECT_EQ(errore("execution error: User canceled. (-128)"), "operazione annullata");
  EXPECT_EQ(errore("No matching processes, Permission denied, -128"), "operazione annullata");
  EXPECT_EQ(errore("Permission denied\nNo matching processes belonging to you were found"),
            "non era in esecuzione: non c'era niente da riavviare");
  EXPECT_EQ(errore("Could not find disk: Operation not permitted"),
            "non riesco a individuare il disco di questo Mac");
  EXPECT_EQ(errore("User canceled: Operation not permitted"),
            "macOS non lo consente a questo programma");
  EXPECT_EQ(errore("x: Permission denied"), "macOS non lo consente a questo programma");
  EXPECT_EQ(errore("permission denied"), "permission denied");
  EXPECT_EQ(errore("User canceled."), "operazione annullata");
  EXPECT_EQ(errore("error (-60007)"), "operazione annullata");
  EXPECT_EQ(errore("(-60008)\n"), "(-60008)\n");
  EXPECT_EQ(errore(""), "errore");
  EXPECT_EQ(errore("caf\xe9"), "errore") << "not UTF-8";
}

TEST_F(ComandiTest, LongErrorIsCutAfterTwoHundredCharacters) {
  std::string text = " ";
  std::string first = " ";
  for (int i = 0; i < 499; ++i) text += "è€";
  for (int i = 0; i < 99; ++i) first += "è€";
  EXPECT_EQ(shellReply({.error = text, .fine = {false, 1}}).errore, first + "è");
}

TEST_F(ComandiTest, ShellKeepsTheOutputOfAFailedCommand) {
  const EsitoShell failed = shellReply({.output = "detto", .error = "no", .fine = {false, 2}});
  EXPECT_FALSE(failed.ok);
  EXPECT_EQ(failed.uscita, "detto");
  const EsitoShell killed = shellReply({.output = "detto", .fine = {true, 9}});
  EXPECT_FALSE(killed.ok);
  EXPECT_EQ(killed.errore, "errore");
  const EsitoShell binary = shellReply({.output = "\xff\xfe"});
  EXPECT_TRUE(binary.ok);
  EXPECT_EQ(binary.uscita, "");
}

TEST_F(ComandiTest, LimitAsksThenKillsAfterThreeSeconds) {
  FakeClock fast;
  ScriptedLauncher programs(&fast);
  programs.answerAll({.output = "fin qui", .durata = 1e9, .ignoraTermine = true});
  const double begun = fast.steady();
  const EsitoShell esito =
      Comandi(programs, fast, FamigliaStrumenti::macos).eseguiShell("lungo", false, 300);
  EXPECT_FALSE(esito.ok);
  EXPECT_EQ(esito.errore, limitSentence("5"));
  EXPECT_EQ(esito.uscita, "fin qui");
  double terminated = 0;
  double killed = 0;
  for (const auto& event : programs.events()) {
    if (event.what == "terminate") terminated = event.when - begun;
    if (event.what == "kill") killed = event.when - begun;
    EXPECT_NE(event.what, "wait") << "nobody waits for a killed child";
  }
  EXPECT_NEAR(terminated, 300, 0.11);
  EXPECT_NEAR(killed, 303, 0.22);
}

TEST_F(ComandiTest, EndIsLookedForEveryTenthOfASecond) {
  launcher.answerAll({.durata = 0.28});
  EXPECT_TRUE(macos.eseguiShell("seen at 0.3", false, 0.25).ok);
  launcher.answerAll({.durata = 0.35});
  EXPECT_FALSE(macos.eseguiShell("not seen at 0.3", false, 0.25).ok);
}

TEST_F(ComandiTest, CommandThatEndsWhenAskedIsStillStopped) {
  for (const double limite : {30.0, 0.0, -1.0, std::numeric_limits<double>::quiet_NaN()}) {
    FakeClock fast;
    ScriptedLauncher programs(&fast);
    programs.answerAll({.durata = 1e9});
    const EsitoShell esito =
        Comandi(programs, fast, FamigliaStrumenti::macos).eseguiShell("lungo", false, limite);
    EXPECT_EQ(esito.errore, limitSentence("0"));
    EXPECT_THAT(programs.eventNames(), testing::Not(testing::Contains("kill")));
  }
}

TEST_F(ComandiTest, OutputHeldOpenIsGivenUpAfterFiveSeconds) {
  const double begun = clock.steady();
  const EsitoShell esito = shellReply({.output = "tronc", .error = "x", .tieneAperto = true});
  EXPECT_NEAR(clock.steady() - begun, 5, 0.11);
  EXPECT_TRUE(esito.ok);
  EXPECT_EQ(esito.uscita, "");
}

TEST_F(ComandiTest, WhatCannotBeStarted) {
  EXPECT_EQ(macos.esegui("/bin/manca", {}).stato, -1);
  EXPECT_EQ(macos.eseguiShell("x", true, 30).errore, "comando non eseguibile");
  EXPECT_EQ(linux_.eseguiShell("x", true, 30).errore, "comando non eseguibile");
  EXPECT_EQ(macos.eseguiAdmin("x"), "osascript non eseguibile");
  EXPECT_EQ(linux_.eseguiAdmin("x"), "pkexec non eseguibile");
}

TEST_F(ComandiTest, AdminRefusalsOfOsascript) {
  launcher.answerAll({.error = "execution error: User canceled. (-128)", .fine = {false, 1}});
  EXPECT_EQ(macos.eseguiAdmin("x"), "operazione annullata");
  EXPECT_THAT(launcher.eventNames(), ElementsAre("start", "readError", "wait"));
  launcher.answerAll({.error = "User canceled.", .fine = {false, 1}});
  EXPECT_EQ(macos.eseguiAdmin("x"), "autorizzazione negata");
  // These two statuses mean nothing special here.
  EXPECT_EQ(shellReply({.fine = {false, 126}}, true).errore, "errore");
  EXPECT_EQ(macos.eseguiAdmin("x"), "autorizzazione negata");
}

TEST_F(ComandiTest, AdminRefusalsOfPkexec) {
  struct Case {
    int stato;
    std::string error;
    std::string shell;
    std::string admin;
  };
  const std::string own = "Error executing command as another user: ";
  const Case cases[] = {
      {126, own + "Request dismissed\n", "operazione annullata", "operazione annullata"},
      {126, "", "operazione annullata", "operazione annullata"},
      {127, own + "Not authorized\n", "autorizzazione negata", "autorizzazione negata"},
      {127, own + "No authentication agent found.\n", "autorizzazione negata",
       "autorizzazione negata"},
      {127, "", "autorizzazione negata", "autorizzazione negata"},
      // The command's own statuses.
      {127, "/bin/sh: 1: nulla: not found\n", "/bin/sh: 1: nulla: not found\n",
       "autorizzazione negata"},
      {126, "/bin/sh: 1: /etc: Permission denied\n", "macOS non lo consente a questo programma",
       "autorizzazione negata"},
      {1, "", "errore", "autorizzazione negata"},
  };
  for (const Case& one : cases) {
    const ScriptedReply reply{.error = one.error, .fine = {false, one.stato}};
    EXPECT_EQ(shellReply(reply, true, FamigliaStrumenti::linux).errore, one.shell) << one.error;
    EXPECT_EQ(linux_.eseguiAdmin("x"), one.admin) << one.error;
  }
  // Without administrator rights a shell's status is its own.
  EXPECT_EQ(shellReply({.fine = {false, 126}}, false, FamigliaStrumenti::linux).errore, "errore");
}

TEST_F(ComandiRealTest, EseguiOnRealPrograms) {
  const EsitoComando missing = comandi.esegui("/no/such/program", {});
  EXPECT_EQ(missing.stato, -1);
  EXPECT_EQ(missing.testo, "");
  const EsitoComando error = comandi.esegui("/bin/sh", {"-c", "echo solo errore >&2; exit 5"});
  EXPECT_EQ(error.stato, 5);
  EXPECT_EQ(error.testo, "solo errore\n");
  const EsitoComando binary = comandi.esegui("/bin/sh", {"-c", R"(printf '\377ciao'; exit 6)"});
  EXPECT_EQ(binary.stato, 6);
  EXPECT_EQ(binary.testo, "");
  EXPECT_EQ(comandi.esegui("/bin/sh", {"-c", "kill -9 $$"}).stato, 137);
}

TEST_F(ComandiRealTest, ShellReadsMuchOfBothStreams) {
  const EsitoShell esito = comandi.eseguiShell(
      "head -c 5000000 /dev/zero | tr '\\0' e >&2 && head -c 5000000 /dev/zero | tr '\\0' o", false,
      60);
  EXPECT_TRUE(esito.ok) << esito.errore;
  EXPECT_EQ(esito.uscita, std::string(5'000'000, 'o'));
}

TEST_F(ComandiRealTest, QuotedTextReachesTheShellWhole) {
  for (const std::string& text :
       {std::string("semplice"), std::string(), std::string("l'aria"), std::string("'"),
        std::string("$(id) `id` \\ \" ; & |\n\t*?~"), std::string("-n''x'\xc3\xa8")}) {
    EXPECT_EQ(comandi.eseguiShell("printf '%s' " + traApici(text), false, 30).uscita, text);
  }
}

}  // namespace
}  // namespace pellak
