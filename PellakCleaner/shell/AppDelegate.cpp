#include "shell/AppDelegate.h"

#include <array>
#include <chrono>
#include <cstdlib>
#include <fmt/format.h>
#include <utility>

#include "PellakCore/base/Json.h"
#include "PellakCore/base/JsonWriter.h"
#include "shell/MenuPrincipale.h"

namespace pellak::shell {
namespace {

constexpr const char* kNome = "Pellak Cleaner";
constexpr const char* kSupporto = "supporto@pellaklab.com";
constexpr double kQuitDelay = 0.6;
constexpr double kBarInterval = 4;
constexpr std::size_t kTouchedBytes = std::size_t{64} << 20U;
constexpr const char* kVisibile = "window.__pellakVisible && __pellakVisible(true)";
constexpr const char* kNascosta = "window.__pellakVisible && __pellakVisible(false)";

}  // namespace

AppDelegate::AppDelegate(AmbienteShell ambiente)
    : ambiente_(std::move(ambiente)),
      host_(ambiente_.host),
      pagina_(host_),
      letture_(ambiente_.probe, ambiente_.clock, ambiente_.home),
      sveglio_(ambiente_.keepAwake, host_, ambiente_.clock, testiSistema(ambiente_.famiglia),
               [this] { mostraMenu(); }) {
  bridge_.emplace(ambiente_.router, pagina_, [this](const std::string& testo) { parola(testo); });
}

AppDelegate::~AppDelegate() {
  if (settingsObs_ != 0) ambiente_.impostazioni.dimentica(settingsObs_);
}

int AppDelegate::esegui() {
  return host_.run(*this, [this] { applicationDidFinishLaunching(); });
}

void AppDelegate::applicationDidFinishLaunching() {
  host_.setMainMenu(menuPrincipale(kNome));
  host_.setStatusImage(ambiente_.risorse + "/engine/menubar.png", "P");
  mostraMenu();
  scaldaAccessoDisco();
  applicaBarra();
  // On the writer's thread, which may be a queue of requests.
  settingsObs_ = ambiente_.impostazioni.osserva([this] {
    host_.post([this] {
      applicaBarra();
      mostraMenu();
    });
  });
  verificaBarra();
  host_.openWindow({kNome, 1100, 740, 780, 520}, {"pellak", "api"});
  caricaPagina();
  verifiche();
}

void AppDelegate::caricaPagina() {
  if (const auto testo = ambiente_.pagina()) {
    host_.loadHtml(*testo);
  } else {
    const std::string cartella = ambiente_.risorse + "/engine";
    host_.loadFile(cartella + "/ui.html", cartella);
  }
}

/// So that the system knows the application as one that asks for protected data, and lists it
/// where the user grants that. What comes of it does not matter.
void AppDelegate::scaldaAccessoDisco() {
  sfondo_.post([this] {
    for (const char* luogo :
         {"/Library/Application Support/com.apple.TCC/TCC.db", "/Library/Safari/Bookmarks.plist",
          "/Library/Mail", "/Library/Containers/com.apple.mail"}) {
      const std::string percorso = ambiente_.home + luogo;
      static_cast<void>(ambiente_.files.readable(percorso));
      static_cast<void>(ambiente_.files.read(percorso, kTouchedBytes));
    }
  });
}

void AppDelegate::showWindow() {
  host_.setRegular(true);
  host_.presentWindow();
  host_.evaluate(kVisibile);
}

void AppDelegate::scanAll() {
  showWindow();
  host_.evaluate("V.scanAllPending=true;api('/api/scan',{section:'all'}).then(poll)");
}

void AppDelegate::message(const std::string& canale, const std::string& json) {
  auto letto = JsonDocument::parse(json);
  if (!letto) return;
  const auto documento = std::make_shared<const JsonDocument>(std::move(*letto));
  bridge_->receive(canale, documento, documento->radice());
}

void AppDelegate::parola(const std::string& parola) {
  if (parola == "pickFolder") {
    pickFolder();
  } else if (parola == "restart") {
    restart();
  } else if (parola == "quit") {
    host_.after(kQuitDelay, [this] { host_.terminate(0); });
  } else if (parola == "fdaPending") {
    fdaPending_ = true;
  } else if (parola == "ready") {
    tempoAvvio();
  }
}

/// A timed start ends here. The variable holds the system's uptime in nanoseconds at which the
/// program was launched.
void AppDelegate::tempoAvvio() {
  const auto inizio = ambiente_.variabile("PELLAK_TIME_START");
  if (!inizio) return;
  const double adesso =
      std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now().time_since_epoch())
          .count();
  ambiente_.stampa(fmt::format("STARTUP: pagina pronta in {:.0f} ms",
                               (adesso - std::strtod(inizio->c_str(), nullptr)) / 1'000'000));
  host_.terminate(0);
}

void AppDelegate::pickFolder() {
  host_.chooseFolders("Escludi", "Scegli le cartelle da escludere dalla ricerca duplicati",
                      [this](const std::vector<std::string>& scelte) {
                        for (const std::string& cartella : scelte) {
                          const std::array<std::string, 1> percorso = {jsonText(cartella)};
                          pagina_.chiama("addExcludedFolder", percorso);
                        }
                      });
}

void AppDelegate::restart() {
  if (ambiente_.riavvia()) host_.terminate(0);
}

void AppDelegate::activated() {
  if (!std::exchange(fdaPending_, false)) return;
  host_.alert({"Applico il permesso",
               "Se hai attivato Pellak Cleaner nell'elenco Accesso completo al disco, un riavvio "
               "rapido lo rende operativo.",
               {"Riavvia ora", "Più tardi"}},
              [this](std::size_t pulsante) {
                if (pulsante == 0) restart();
              });
}

void AppDelegate::scriptAlert(const std::string& testo, std::function<void()> risposta) {
  host_.alert({kNome, testo, {"OK"}},
              [risposta = std::move(risposta)](std::size_t) { risposta(); });
}

void AppDelegate::scriptConfirm(const std::string& testo, std::function<void(bool)> risposta) {
  host_.alert({"Confermi?", testo, {"OK", "Annulla"}},
              [risposta = std::move(risposta)](std::size_t pulsante) { risposta(pulsante == 0); });
}

void AppDelegate::windowWillClose() {
  mostraMenu();
  host_.evaluate(kNascosta);
  host_.post([this] {
    if (!host_.windowVisible()) host_.setRegular(false);
  });
}

/// Once the page is loaded again; a page that keeps ending stays away.
void AppDelegate::pageGone() {
  const bool primaVolta = cadute_++ == 0;
  if (primaVolta) caricaPagina();
  host_.alert({kNome,
               primaVolta ? "La pagina si è chiusa in modo imprevisto: l'ho ricaricata. Le "
                            "operazioni in corso proseguono."
                          : "La pagina si è chiusa di nuovo: esci e riapri Pellak Cleaner.",
               {"OK"}},
              [](std::size_t) {});
}

void AppDelegate::menuChosen(MenuAction azione) {
  switch (azione) {
    case MenuAction::open:
      return showWindow();
    case MenuAction::scanAll:
      return scanAll();
    case MenuAction::awakeHalfHour:
      return sveglio_.avvia(Sveglio::kMezzOra);
    case MenuAction::awakeTwoHours:
      return sveglio_.avvia(Sveglio::kDueOre);
    case MenuAction::awakeForever:
      return sveglio_.avvia({});
    case MenuAction::awakeOff:
      return sveglio_.ferma();
    case MenuAction::about:
      return showAbout();
    case MenuAction::quit:
      return host_.terminate(0);
    case MenuAction::scanView:
      return dilloAllaPagina("'scansiona'");
    case MenuAction::settings:
      return dilloAllaPagina("'impostazioni'");
    case MenuAction::none:
      return;
    case MenuAction::firstView:
    case MenuAction::lastView:
      break;
  }
  const int posto = static_cast<int>(azione) - static_cast<int>(MenuAction::firstView);
  dilloAllaPagina("'vista'," + std::to_string(posto));
}

void AppDelegate::dilloAllaPagina(const std::string& argomenti) {
  showWindow();
  host_.evaluate("window.__pellakMenu && __pellakMenu(" + argomenti + ")");
}

void AppDelegate::showAbout() {
  host_.showAbout({kNome, "Versione " + ambiente_.versione,
                   testiSistema(ambiente_.famiglia).informazioni,
                   ambiente_.risorse + "/engine/logo-dog-trasparente.png",
                   std::string("mailto:") + kSupporto + "?subject=" + "Pellak%20Cleaner%20" +
                       ambiente_.versione});
}

std::vector<MenuEntry> AppDelegate::vociMenu() const {
  const TitoloSveglio titolo = sveglio_.titolo();
  MenuEntry tieniSveglio = voceMenu(titolo.testo, MenuAction::none);
  tieniSveglio.spunta = titolo.spunta;
  tieniSveglio.sotto = {voceMenu("Per 30 minuti", MenuAction::awakeHalfHour),
                        voceMenu("Per 2 ore", MenuAction::awakeTwoHours),
                        voceMenu("Finché non lo spengo io", MenuAction::awakeForever), MenuEntry{},
                        voceMenu("Lascia riposare", MenuAction::awakeOff)};
  return {voceMenu(std::string("Apri ") + kNome, MenuAction::open, "o"),
          voceMenu("Scansiona tutto", MenuAction::scanAll, "S"),
          MenuEntry{},
          tieniSveglio,
          MenuEntry{},
          voceMenu(std::string("Informazioni su ") + kNome, MenuAction::about),
          voceMenu(std::string("Esci da ") + kNome, MenuAction::quit, "q")};
}

void AppDelegate::mostraMenu() {
  // Without a status item nothing could bring a hidden window back.
  host_.setCloseHides(
      host_.setStatusMenu(letture_.righe(ambiente_.impostazioni.leggi()), vociMenu()));
}

void AppDelegate::menuWillOpen() { mostraMenu(); }

void AppDelegate::applicaBarra() {
  const bool viva = ambiente_.impostazioni.leggi().booleano("menu_bar_live");
  if (viva && !barTimer_) {
    barTimer_ = host_.every(kBarInterval, [this] { aggiornaBarra(); });
    aggiornaBarra();
  } else if (!viva) {
    if (barTimer_) host_.cancel(*std::exchange(barTimer_, std::nullopt));
    titoloBarra_.clear();
    host_.setStatusTitle({});
  }
}

void AppDelegate::aggiornaBarra() {
  titoloBarra_ = letture_.barra(ambiente_.impostazioni.leggi());
  host_.setStatusTitle(titoloBarra_);
}

}  // namespace pellak::shell
