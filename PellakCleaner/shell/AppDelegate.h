#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "PellakCore/Engine.h"
#include "PellakCore/Impostazioni.h"
#include "PellakCore/base/SerialQueue.h"
#include "api/Router.h"
#include "platform/Clock.h"
#include "platform/DesktopHost.h"
#include "platform/Files.h"
#include "platform/KeepAwake.h"
#include "platform/SystemProbe.h"
#include "platform/ToolFamily.h"
#include "shell/Bridge.h"
#include "shell/LettureSistema.h"
#include "shell/PaginaWeb.h"
#include "shell/Sveglio.h"

namespace pellak::shell {

/// What the application in its window works with. The references outlive it.
struct AmbienteShell {
  Engine& engine;
  Impostazioni& impostazioni;
  api::Router& router;
  Files& files;
  Clock& clock;
  DesktopHost& host;
  KeepAwake& keepAwake;
  SystemProbe& probe;
  FamigliaStrumenti famiglia;
  std::string home;
  std::string risorse;  ///< the resource folder, which holds "engine"
  std::string versione;
  /// The page inside the executable; nothing when there is none.
  std::function<std::optional<std::string>()> pagina;
  /// Starts a new instance half a second later; whether that will happen.
  std::function<bool()> riavvia;
  /// Saves a picture of the screen, for an automated check.
  std::function<void()> cattura;
  /// A variable of the environment.
  std::function<std::optional<std::string>(const std::string&)> variabile;
  /// Lines of the automated checks, for standard output. Any thread.
  std::function<void(const std::string&)> stampa;
};

/// The application: builds menus and status item, opens the window with the page, carries messages
/// between page and router, and owns what the page can't draw itself. All decisions of the window
/// are here; the host only carries them out.
///
/// Main thread. The host's loop must have ended before it is destroyed.
class AppDelegate final : public DesktopEvents {
 public:
  explicit AppDelegate(AmbienteShell ambiente);
  ~AppDelegate() override;
  AppDelegate(const AppDelegate&) = delete;
  AppDelegate& operator=(const AppDelegate&) = delete;

  /// Runs the host's loop with the launch sequence as its first task; returns the exit status.
  int esegui();

  /// Waits at most `attesa` until every request of the page is answered; whether they all are.
  bool attendiRisposte(std::chrono::milliseconds attesa) {
    return bridge_->attendiRisposte(attesa);
  }

  /// The launch sequence; called once, on the running loop.
  void applicationDidFinishLaunching();
  void showWindow();
  void scanAll();

  void message(const std::string& canale, const std::string& json) override;
  void windowWillClose() override;
  void activated() override;
  void reopened() override { showWindow(); }
  void menuChosen(MenuAction azione) override;
  void menuWillOpen() override;
  void scriptAlert(const std::string& testo, std::function<void()> risposta) override;
  void scriptConfirm(const std::string& testo, std::function<void(bool)> risposta) override;
  void pageGone() override;

  /// Whether the timer that refreshes the status item runs.
  bool barraViva() const { return barTimer_.has_value(); }

 private:
  void parola(const std::string& parola);
  void scaldaAccessoDisco();
  void applicaBarra();
  void aggiornaBarra();
  void mostraMenu();
  void dilloAllaPagina(const std::string& argomenti);
  std::vector<MenuEntry> vociMenu() const;
  void caricaPagina();
  void pickFolder();
  void restart();
  void pronta();
  void showAbout();
  void tempoAvvio();

  // The switches of automated checks, in Verifiche.cpp.
  void verificaBarra();
  void verifiche();
  void verificaMotore();
  void verificaTempi();
  void verificaRiapertura();

  const AmbienteShell ambiente_;
  DesktopHost& host_;
  PaginaWeb pagina_;
  bool fdaPending_ = false;
  int cadute_ = 0;  ///< how often the page's process has ended
  std::string titoloBarra_;
  LettureSistema letture_;
  Sveglio sveglio_;
  std::optional<MainLoop::TimerId> barTimer_;
  std::uint64_t settingsObs_ = 0;
  /// Work that must not hold up the main thread and that nobody waits for.
  SerialQueue sfondo_{"pellak.utility"};
  /// Last: its queues are joined before anything they use goes away.
  std::optional<Bridge> bridge_;
};

}  // namespace pellak::shell
