#include "app/ComandoFinestra.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fmt/format.h>
#include <optional>
#include <unistd.h>
#include <utility>

#include "app/Residente.h"
#include "app/Terminale.h"
#include "app/Uscita.h"
#include "app/Versione.h"
#include "platform/Desktop.h"
#include "shell/AppDelegate.h"
#include "shell/Incorporati.h"
#include "shell/Prova.h"
#include "shell/Riavvio.h"

namespace pellak::app {
namespace {

/// How long what is under way at the end may take to finish by itself.
constexpr std::chrono::milliseconds kPazienza{2000};

std::optional<std::string> variabile(const std::string& nome) {
  const char* valore = std::getenv(nome.c_str());
  return valore == nullptr ? std::nullopt : std::optional<std::string>(valore);
}

void riga(const std::string& testo) {
  stampa(testo + "\n");
  consegna();
}

/// Where no window can be shown.
int senzaFinestra(std::unique_ptr<Native> native, Ambiente ambiente, const Error& errore,
                  const std::function<void(const std::string&)>& avviso) {
  if (errore.kind == ErrorKind::exists) return 0;
  if (errore.kind == ErrorKind::missing && variabile("PELLAK_BENCH")) {
    Applicazione applicazione(std::move(native), std::move(ambiente), avviso);
    shell::prova::tempi(applicazione.engine(), applicazione.home(), riga);
    return chiudiUscita();
  }
  const std::string motivo = errore.kind == ErrorKind::missing
                                 ? std::string("nessuno schermo disponibile")
                                 : "la finestra non si apre (" + errore.text + ")";
  avviso(motivo +
         ": usa il terminale con «pellak-cleaner scan», «show», «map», «trash», «log» o «restore» "
         "(aiuto: «pellak-cleaner --help»).");
  return 1;
}

/// The application with what only its window has: the desktop and the delegate.
class Finestra {
 public:
  Finestra(std::unique_ptr<Native> native, Ambiente ambiente, Desktop& desktop,
           const std::function<void(const std::string&)>& avviso)
      : desktop_(desktop),
        residente_(std::move(native), std::move(ambiente), avviso, [this] { controlloFinito(); }),
        applicazione_(residente_.applicazione()) {}

  int esegui() {
    residente_.sorveglia();
    shell::AppDelegate delegato(ambienteShell());
    const int stato = delegato.esegui();
    applicazione_.engine().stop();
    const bool quiete = delegato.attendiRisposte(kPazienza);
    applicazione_.engine().attendiFine(kPazienza);
    chiudiUscita();
    // A folder that does not answer must not keep the process from ending; what we keep is
    // written whole or not at all, and a move that is cut off is taken up by the next start.
    if (!quiete || applicazione_.engine().occupato()) std::_Exit(stato);
    return stato;
  }

 private:
  shell::AmbienteShell ambienteShell() {
    const Platform& platform = applicazione_.platform();
    return {applicazione_.engine(),
            applicazione_.impostazioni(),
            applicazione_.router(),
            platform.files,
            platform.clock,
            desktop_.host(),
            desktop_.keepAwake(),
            platform.probe,
            applicazione_.famiglia(),
            applicazione_.home(),
            applicazione_.risorse(),
            kVersione,
            [] { return shell::incorporati::pagina(); },
            [this] { return riavvia(); },
            [this] { cattura(); },
            variabile,
            riga};
  }

  /// On the engine's queue. The page did not ask for this scan and waits for no news.
  void controlloFinito() {
    desktop_.host().post([this] { desktop_.host().evaluate("window.poll && poll()"); });
  }

  bool avviaShell(const std::string& comando) {
    return applicazione_.platform()
        .launcher.start({"/bin/sh", {"-c", comando}, ChildStreams::errorOnly, {}})
        .ok();
  }

  bool riavvia() {
    return avviaShell(
        shell::comandoRiavvio(::getpid(), desktop_.startCommand(applicazione_.eseguibile())));
  }

  void cattura() {
    static_cast<void>(applicazione_.comandi().esegui("/usr/sbin/screencapture",
                                                     {"-x", "/tmp/pellak-informazioni.png"}));
  }

  Desktop& desktop_;
  Residente residente_;
  Applicazione& applicazione_;
};

}  // namespace

int comandoFinestra(std::unique_ptr<Native> native, Ambiente ambiente,
                    const std::function<void(const std::string&)>& avviso) {
  const auto desktop = openDesktop(native->executablePath());
  if (!desktop) {
    return senzaFinestra(std::move(native), std::move(ambiente), desktop.error(), avviso);
  }
  return Finestra(std::move(native), std::move(ambiente), **desktop, avviso).esegui();
}

}  // namespace pellak::app
