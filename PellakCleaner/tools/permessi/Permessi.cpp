#include "tools/permessi/Permessi.h"

#include <array>
#include <span>
#include <utility>

#include "PellakCore/base/BytePath.h"
#include "commands/Apici.h"

namespace pellak::permessi {
namespace {

struct Nome {
  std::string_view nome;
  std::string_view percorso;
};

constexpr std::array<Nome, 4> kMacos{{
    {"Registro dei permessi di sistema", "~/Library/Application Support/com.apple.TCC/TCC.db"},
    {"Preferiti di Safari", "~/Library/Safari/Bookmarks.plist"},
    {"Archivio di Mail", "~/Library/Mail"},
    {"Contenitore di Mail", "~/Library/Containers/com.apple.mail"},
}};

constexpr std::array<Nome, 9> kLinux{{
    {"Cartella utente", "~"},
    {"Download", "~/Downloads"},
    {"Cache delle applicazioni", "~/.cache"},
    {"Dati delle applicazioni", "~/.local/share"},
    {"Impostazioni delle applicazioni", "~/.config"},
    {"Applicazioni Flatpak", "~/.var/app"},
    {"Registri di sistema", "/var/log"},
    {"Registro eventi (journal)", "/var/log/journal"},
    {"Pacchetti scaricati", "/var/cache/apt/archives"},
}};

constexpr const char* kNonDisponibile = "non disponibile";
constexpr const char* kElencoAccesso =
    "x-apple.systempreferences:com.apple.preference.security?Privacy_AllFiles";

std::span<const Nome> elenco(FamigliaStrumenti famiglia) {
  if (famiglia == FamigliaStrumenti::macos) return kMacos;
  return kLinux;
}

}  // namespace

std::vector<Luogo> luoghi(Files& files, FamigliaStrumenti famiglia, std::string_view home) {
  std::vector<Luogo> presenti;
  for (const Nome& nome : elenco(famiglia)) {
    Luogo luogo{std::string(nome.nome), espandiTilde(nome.percorso, home)};
    const Result<void> aperto = files.readable(luogo.percorso);
    if (!aperto && aperto.error().kind == ErrorKind::missing) continue;
    luogo.leggibile = aperto.ok();
    luogo.negato = !aperto && aperto.error().kind == ErrorKind::denied;
    presenti.push_back(std::move(luogo));
  }
  return presenti;
}

std::optional<std::string> apriAccessoCompleto(Comandi& comandi, FamigliaStrumenti famiglia) {
  if (famiglia != FamigliaStrumenti::macos) return kNonDisponibile;
  const EsitoComando esito = comandi.esegui("/usr/bin/open", {kElencoAccesso});
  return esito.stato == 0 ? std::nullopt : std::optional<std::string>("comando non eseguibile");
}

Result<bool> automazione(Comandi& comandi, FamigliaStrumenti famiglia, std::string_view app) {
  if (famiglia != FamigliaStrumenti::macos) return Error{ErrorKind::missing, 0, kNonDisponibile};
  if (app.empty()) return Error{ErrorKind::invalid, 0, "nessuna app indicata"};
  const EsitoComando esito = comandi.esegui(
      "/usr/bin/osascript", {"-e", "tell application " + traVirgolette(app) + " to get name"});
  if (esito.stato == -1) return Error{ErrorKind::missing, 0, "osascript non eseguibile"};
  return esito.stato == 0;
}

}  // namespace pellak::permessi
