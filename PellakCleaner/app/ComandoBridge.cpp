#include "app/ComandoBridge.h"

#include <chrono>
#include <cstdlib>
#include <fmt/format.h>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>
#include <utility>

#include "PellakCore/base/Json.h"
#include "app/LettoreRighe.h"
#include "app/PaginaStdio.h"
#include "app/Residente.h"
#include "app/Uscita.h"
#include "shell/Bridge.h"

namespace pellak::app {
namespace {

using Orologio = std::chrono::steady_clock;

constexpr std::size_t kMaxLine = std::size_t{64} << 20U;
/// The page may still finish its own work after it has asked to quit.
constexpr std::chrono::milliseconds kQuitDelay{600};
/// Requests taken ahead of their answers; a flood waits in the pipe, not in memory.
constexpr std::size_t kMaxPending = 500;
constexpr std::chrono::milliseconds kBreath{50};
/// How long a scan may take to notice that it has to stop.
constexpr std::chrono::milliseconds kStopPatience{2000};

/// "STARTUP" line of a timed start: PELLAK_TIME_START holds the system's uptime in nanoseconds at
/// which the program was launched.
std::optional<std::string> rigaAvvio() {
  const char* inizio = std::getenv("PELLAK_TIME_START");
  if (inizio == nullptr) return {};
  const double adesso =
      std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now().time_since_epoch())
          .count();
  return fmt::format("STARTUP: pagina pronta in {:.0f} ms\n",
                     (adesso - std::strtod(inizio, nullptr)) / 1'000'000);
}

/// The words of the channel "pellak" that mean something without a window. They arrive on the
/// thread that reads the lines.
class Parole {
 public:
  void ascolta(const std::string& parola) {
    if (parola == "quit" && !scadenza_) scadenza_ = Orologio::now() + kQuitDelay;
    if (parola == "ready" && !pronta_) pronta_ = rigaAvvio();
  }

  bool deveFinire() const { return pronta_ || (scadenza_ && Orologio::now() >= *scadenza_); }
  const std::optional<std::string>& riga() const { return pronta_; }

  /// Milliseconds the reader may wait: for ever, or until the process has to end.
  int pazienza() const {
    if (!scadenza_) return -1;
    const auto resto =
        std::chrono::duration_cast<std::chrono::milliseconds>(*scadenza_ - Orologio::now());
    return resto.count() < 0 ? 0 : static_cast<int>(resto.count()) + 1;
  }

 private:
  std::optional<Orologio::time_point> scadenza_;
  std::optional<std::string> pronta_;
};

void consegna(shell::Bridge& bridge, const std::string& riga) {
  Result<JsonDocument> letto = JsonDocument::parse(riga);
  if (!letto) return;
  const auto documento = std::make_shared<const JsonDocument>(std::move(*letto));
  const Json messaggio = documento->radice();
  const std::string canale = messaggio.testo("channel");
  bridge.receive(canale, documento, canale == "pellak" ? messaggio["body"] : messaggio);
}

}  // namespace

int comandoBridge(std::unique_ptr<Native> native, Ambiente ambiente,
                  const std::function<void(const std::string&)>& avviso) {
  Residente residente(std::move(native), std::move(ambiente), avviso);
  Applicazione& applicazione = residente.applicazione();
  PaginaStdio pagina;
  Parole parole;
  shell::Bridge bridge(applicazione.router(), pagina,
                       [&](const std::string& parola) { parole.ascolta(parola); });
  residente.sorveglia();
  LettoreRighe righe(STDIN_FILENO, kMaxLine);
  std::string riga;
  while (!parole.deveFinire()) {
    if (bridge.inAttesa() > kMaxPending) {
      bridge.attendiRisposte(kBreath);
      continue;
    }
    const auto esito = righe.prossima(riga, parole.pazienza());
    if (esito == LettoreRighe::Esito::riga) consegna(bridge, riga);
    if (esito == LettoreRighe::Esito::fine) {
      bridge.attendiRisposte();
      break;
    }
  }
  if (parole.riga()) stampa(*parole.riga());
  chiudiUscita();
  // A folder that does not answer must not keep the process from ending; what we keep is written
  // whole or not at all.
  applicazione.engine().stop();
  applicazione.engine().attendiFine(kStopPatience);
  if (applicazione.engine().occupato() || bridge.inAttesa() > 0) std::_Exit(0);
  return 0;
}

}  // namespace pellak::app
