#include "app/Applicazione.h"

#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "PellakCore/CartelleUtente.h"
#include "PellakCore/base/BytePath.h"
#include "platform/ThreadPriority.h"
#include "scanners/Tabella.h"
#include "shell/Incorporati.h"

namespace pellak::app {
namespace {

std::string variabile(const char* nome) {
  const char* valore = std::getenv(nome);
  return valore == nullptr ? std::string() : std::string(valore);
}

std::string senzaBarre(std::string percorso) {
  while (percorso.size() > 1 && percorso.back() == '/') percorso.pop_back();
  return percorso;
}

std::string nomeRegole(FamigliaStrumenti famiglia) {
  return famiglia == FamigliaStrumenti::macos ? "/engine/rules.json" : "/engine/rules.linux.json";
}

/// The resource folder: named by the environment, beside the executable, or where an
/// installation puts it (on a Mac inside the bundle).
std::string cartellaRisorse(const Native& native, Files& files) {
  if (std::string indicata = variabile("PELLAK_RESOURCES"); !indicata.empty()) {
    return senzaBarre(indicata);
  }
  const std::string base(cartellaSopra(native.executablePath()));
  const std::array<std::string, 3> luoghi = {base + "/resources", base + "/../Resources",
                                             base + "/../share/pellak-cleaner"};
  for (const std::string& luogo : luoghi) {
    if (files.exists(luogo + "/engine")) return luogo;
  }
  return luoghi.front();
}

/// Only absolute paths count, as the convention for these variables says. The user's own folders,
/// whose names follow the language, stand in a file.
std::vector<Spostamento> cartelleXdg(Files& files, const std::string& home) {
  constexpr std::array<std::pair<const char*, const char*>, 4> kVariabili = {
      {{"XDG_CACHE_HOME", "~/.cache"},
       {"XDG_DATA_HOME", "~/.local/share"},
       {"XDG_STATE_HOME", "~/.local/state"},
       {"XDG_CONFIG_HOME", "~/.config"}}};
  constexpr std::size_t kMaxUserDirs = std::size_t{1} << 16U;
  std::vector<Spostamento> spostamenti;
  std::string config = home + "/.config";
  for (const auto& [nome, solita] : kVariabili) {
    const std::string cartella = senzaBarre(variabile(nome));
    if (cartella.empty() || cartella[0] != '/') continue;
    spostamenti.push_back({solita, cartella});
    if (spostamenti.back().da == "~/.config") config = cartella;
  }
  if (const auto testo = files.read(config + "/user-dirs.dirs", kMaxUserDirs)) {
    for (Spostamento& utente : leggiCartelleUtente(*testo, home)) {
      spostamenti.push_back(std::move(utente));
    }
  }
  return spostamenti;
}

/// Where the user's folders really are.
std::vector<std::string> luoghi(const std::vector<Spostamento>& spostamenti,
                                DirectoryLister& lister) {
  std::vector<std::string> veri;
  for (const Spostamento& spostamento : spostamenti) {
    const auto reale = lister.resolve(spostamento.a);
    veri.push_back(reale ? *reale : spostamento.a);
  }
  return veri;
}

/// A rules file that the user named stands alone.
std::function<std::optional<std::string>()> regoleIncorporate(const Ambiente& ambiente) {
  if (ambiente.regoleIndicate) return nullptr;
  return [famiglia = ambiente.famiglia] { return shell::incorporati::regole(famiglia); };
}

Error erroreAmbiente(std::string testo) { return {ErrorKind::invalid, 0, std::move(testo)}; }

}  // namespace

Result<Ambiente> leggiAmbiente(Native& native) {
  Files& files = native.platform().files;
  Ambiente ambiente;
  ambiente.home = senzaBarre(variabile("HOME"));
  if (ambiente.home.empty()) ambiente.home = senzaBarre(native.homeFolder());
  if (ambiente.home.empty() || ambiente.home[0] != '/') {
    return erroreAmbiente("HOME non indica una cartella utente");
  }
  if (!files.exists(ambiente.home)) {
    return erroreAmbiente("la cartella utente non esiste: " + ambiente.home);
  }
  if (auto reale = native.platform().lister.resolve(ambiente.home)) ambiente.home = *reale;
  ambiente.famiglia = native.famiglia();
  if (const std::string scelta = variabile("PELLAK_TOOLS"); scelta == "macos") {
    ambiente.famiglia = FamigliaStrumenti::macos;
  } else if (scelta == "linux") {
    ambiente.famiglia = FamigliaStrumenti::linux;
  } else if (!scelta.empty()) {
    return erroreAmbiente("PELLAK_TOOLS può valere solo macos o linux");
  }
  ambiente.risorse = cartellaRisorse(native, files);
  ambiente.rulesPath = variabile("PELLAK_RULES");
  ambiente.regoleIndicate = !ambiente.rulesPath.empty();
  if (!ambiente.regoleIndicate) {
    ambiente.rulesPath = ambiente.risorse + nomeRegole(ambiente.famiglia);
  }
  if (ambiente.famiglia == FamigliaStrumenti::linux)
    ambiente.spostamenti = cartelleXdg(files, ambiente.home);
  return ambiente;
}

Applicazione::Applicazione(std::unique_ptr<Native> native, Ambiente ambiente,
                           std::function<void(const std::string&)> avviso,
                           std::function<void(const Snapshot&)> controlloFinito)
    : native_(std::move(native)),
      platform_(native_->platform()),
      ambiente_(std::move(ambiente)),
      comandi_(platform_.launcher, platform_.clock, ambiente_.famiglia),
      impostazioni_(platform_.files, Store(ambiente_.home), native_->loginEntry(ambiente_.home)),
      engine_({platform_.files, platform_.clock, platform_.lister, platform_.applicazioni,
               impostazioni_, Store(ambiente_.home), ambiente_.rulesPath, ambiente_.spostamenti,
               scanners::tabellaScanner(platform_.files, Store(ambiente_.home)), std::move(avviso),
               std::move(controlloFinito), regoleIncorporate(ambiente_), &platform_.mounts,
               lowerThisThread}),
      cestino_({platform_.files, *reader_, platform_.lister, platform_.clock, platform_.trash,
                Store(ambiente_.home), [this] { platform_.suono.movedToTrash(); },
                luoghi(ambiente_.spostamenti, platform_.lister)}),
      operazioni_(engine_, cestino_, platform_.applicazioni, *reader_),
      router_({engine_, impostazioni_, platform_.fileManager, platform_.applicazioni,
               platform_.files, comandi_, platform_.probe, ambiente_.famiglia, operazioni_,
               ambiente_.home}) {
  native_->useReserve(Store(ambiente_.home).riserva());
  if (ambiente_.famiglia == FamigliaStrumenti::macos) {
    platform_.trash.alsoFrom(ambiente_.home + "/.Trash");
  }
  cestino_.riprendi();
}

Result<std::optional<trash::Operazione>> Applicazione::operazione(std::string_view id) {
  std::optional<trash::Operazione> trovata;
  const auto letto = operazioni_.log([&](const trash::Operazione& operazione) {
    if (!trovata && operazione.id == id) trovata = operazione;
  });
  if (!letto) return letto.error();
  return trovata;
}

}  // namespace pellak::app
