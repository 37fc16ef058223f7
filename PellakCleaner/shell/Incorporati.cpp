#include "shell/Incorporati.h"

#include "shell/Blindato.h"
#include "shell/Chiave.h"
#include "shell/Sigillati.h"

namespace pellak::shell::incorporati {

std::optional<std::string> pagina() { return blindato::pagina(sigillati::kPagina, kChiave); }

std::optional<std::string> regole(FamigliaStrumenti famiglia) {
  return blindato::apri(
      famiglia == FamigliaStrumenti::macos ? sigillati::kRegoleMacos : sigillati::kRegoleLinux,
      kChiave);
}

}  // namespace pellak::shell::incorporati
