#include "tools/permessi/Permessi.h"

#include <array>
#include <span>
#include <utility>

#include "PellakCore/base/BytePath.h"

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

}  // namespace pellak::permessi
