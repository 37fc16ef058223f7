#pragma once

#include <string>
#include <vector>

#include "platform/DesktopHost.h"

namespace pellak::shell {

MenuEntry voceMenu(std::string titolo, MenuAction azione, std::string tasto = {});

/// The application's own menu: what the page can be told by a key, then what it is and its end.
std::vector<MenuEntry> menuPrincipale(const std::string& nome);

}  // namespace pellak::shell
