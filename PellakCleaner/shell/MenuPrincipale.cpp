#include "shell/MenuPrincipale.h"

#include <utility>

#include "PellakCore/Catalogo.h"

namespace pellak::shell {
namespace {

/// The overview and the sections, each with its number.
std::vector<MenuEntry> viste() {
  const int prima = static_cast<int>(MenuAction::firstView);
  std::vector<MenuEntry> voci{voceMenu("Panoramica", MenuAction::firstView, "1")};
  for (const Meta& meta : metas()) {
    const int posto = static_cast<int>(voci.size());
    if (prima + posto > static_cast<int>(MenuAction::lastView)) break;
    voci.push_back(voceMenu(std::string(meta.name), static_cast<MenuAction>(prima + posto),
                            std::to_string(posto + 1)));
  }
  return voci;
}

}  // namespace

MenuEntry voceMenu(std::string titolo, MenuAction azione, std::string tasto) {
  MenuEntry nuova;
  nuova.titolo = std::move(titolo);
  nuova.azione = azione;
  nuova.tasto = std::move(tasto);
  return nuova;
}

std::vector<MenuEntry> menuPrincipale(const std::string& nome) {
  MenuEntry vai = voceMenu("Vai a", MenuAction::none);
  vai.sotto = viste();
  return {voceMenu("Informazioni su " + nome, MenuAction::about),
          MenuEntry{},
          voceMenu("Impostazioni", MenuAction::settings, ","),
          voceMenu("Scansiona questa vista", MenuAction::scanView, "r"),
          vai,
          MenuEntry{},
          voceMenu("Esci da " + nome, MenuAction::quit, "q")};
}

}  // namespace pellak::shell
