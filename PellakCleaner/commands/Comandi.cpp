#include "commands/Comandi.h"

#include <system_error>
#include <utility>

#include "PellakCore/base/Utf8.h"
#include "commands/ErroriComando.h"
#include "commands/OutputReaders.h"

namespace pellak {

namespace {

constexpr double kIntervallo = 0.1;     // between two looks at whether the child has ended
constexpr double kAttesaTermine = 3.0;  // from the request to end to the kill
constexpr double kAttesaLettori = 5.0;  // for the output once the child is gone
constexpr int kBaseSegnale = 128;       // as shells report a program ended by a signal

constexpr const char* kNonEseguibile = "comando non eseguibile";
constexpr const char* kAnnullata = "operazione annullata";
constexpr const char* kNegata = "autorizzazione negata";

std::int32_t comeStato(ExitStatus fine) {
  return fine.signalled ? kBaseSegnale + fine.number : fine.number;
}

std::string testoUtf8(std::string byte) {
  if (!utf8Valido(byte)) return {};
  return byte;
}

std::string proteggi(std::string_view testo, std::string_view daProteggere) {
  std::string protetto;
  protetto.reserve(testo.size());
  for (const char byte : testo) {
    if (daProteggere.find(byte) != std::string_view::npos) protetto += '\\';
    protetto += byte;
  }
  return protetto;
}

}  // namespace

Comandi::Comandi(ProcessLauncher& launcher, Clock& clock, FamigliaStrumenti famiglia,
                 StrumentiAdmin strumenti)
    : launcher_(launcher), clock_(clock), famiglia_(famiglia), strumenti_(std::move(strumenti)) {}

EsitoComando Comandi::esegui(const std::string& percorso,
                             const std::vector<std::string>& argomenti) {
  const auto child = launcher_.start({percorso, argomenti, ChildStreams::merged, {}});
  if (!child) return {};
  // Reading comes first: a child that fills the pipe would never end.
  std::string byte;
  (*child)->readOutput(byte);
  const std::int32_t stato = comeStato((*child)->wait());
  return {stato, testoUtf8(std::move(byte))};
}

EsitoShell Comandi::eseguiShell(std::string_view comando, bool admin, double limite) {
  const auto child = launcher_.start(rigaShell(comando, admin));
  if (!child) return {false, kNonEseguibile, {}};
  try {
    OutputReaders lettori(**child, clock_);
    const bool finito = attendiOFerma(**child, limite);
    lettori.finish(kAttesaLettori);
    auto uscita = lettori.takeOutput();
    auto errore = lettori.takeError();
    if (!finito) return {false, erroreLimite(limite), testoUtf8(std::move(uscita.byte))};
    // A text that somebody may still be writing is no text to draw conclusions from.
    const std::string testo = uscita.completo ? testoUtf8(std::move(uscita.byte)) : std::string();
    const std::string testoErrore =
        errore.completo ? testoUtf8(std::move(errore.byte)) : std::string();
    return esito(comeStato((*child)->wait()), admin, testo, testoErrore);
  } catch (const std::system_error&) {
    // No thread to read with. A command whose output is lost must not go on unseen.
    (*child)->kill();
    return {false, kNonEseguibile, {}};
  }
}

std::optional<std::string> Comandi::eseguiAdmin(std::string_view comando) {
  const bool macos = famiglia_ == FamigliaStrumenti::macos;
  LaunchRequest riga = macos ? rigaAppleScript(proteggi(comando, "\\\"")) : rigaPkexec(comando);
  riga.flussi = ChildStreams::errorOnly;
  const auto child = launcher_.start(riga);
  if (!child) return macos ? "osascript non eseguibile" : "pkexec non eseguibile";
  std::string byte;
  (*child)->readError(byte);
  const std::int32_t stato = comeStato((*child)->wait());
  if (stato == 0) return std::nullopt;
  const std::string testoErrore = testoUtf8(std::move(byte));
  const bool annullata =
      testoErrore.find("-128") != std::string::npos ||
      (!macos && rispostaPkexec(stato, testoErrore) == RispostaPkexec::annullata);
  return annullata ? kAnnullata : kNegata;
}

EsitoShell Comandi::esito(std::int32_t stato, bool admin, std::string uscita,
                          std::string_view testoErrore) const {
  if (stato == 0) return {true, {}, std::move(uscita)};
  if (admin && famiglia_ == FamigliaStrumenti::linux) {
    const RispostaPkexec risposta = rispostaPkexec(stato, testoErrore);
    if (risposta == RispostaPkexec::annullata) return {false, kAnnullata, std::move(uscita)};
    if (risposta == RispostaPkexec::negata) return {false, kNegata, std::move(uscita)};
  }
  return {false, erroreComando(testoErrore), std::move(uscita)};
}

LaunchRequest Comandi::rigaShell(std::string_view comando, bool admin) const {
  LaunchRequest riga;
  if (!admin) {
    riga.percorso = "/bin/sh";
    riga.argomenti = {"-c", std::string(comando)};
  } else if (famiglia_ == FamigliaStrumenti::macos) {
    riga = rigaAppleScript(proteggi(comando, "\""));
  } else {
    riga = rigaPkexec(comando);
  }
  riga.flussi = ChildStreams::separate;
  return riga;
}

LaunchRequest Comandi::rigaPkexec(std::string_view comando) const {
  LaunchRequest riga;
  riga.percorso = strumenti_.pkexec;
  riga.argomenti = {"/bin/sh", "-c", std::string(comando)};
  return riga;
}

LaunchRequest Comandi::rigaAppleScript(std::string_view protetto) const {
  std::string script = "do shell script \"";
  script += protetto;
  script += "\" with administrator privileges";
  LaunchRequest riga;
  riga.percorso = strumenti_.osascript;
  riga.argomenti = {"-e", std::move(script)};
  return riga;
}

bool Comandi::attendiFine(ChildProcess& child, double limite) {
  const double scadenza = clock_.steady() + limite;
  while (!child.ended()) {
    if (!(clock_.steady() < scadenza)) return false;
    clock_.sleepFor(kIntervallo);
  }
  return true;
}

bool Comandi::attendiOFerma(ChildProcess& child, double limite) {
  if (attendiFine(child, limite)) return true;
  child.terminate();
  if (!attendiFine(child, kAttesaTermine)) child.kill();
  return false;
}

}  // namespace pellak
