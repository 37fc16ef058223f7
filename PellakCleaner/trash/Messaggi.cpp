#include "trash/Messaggi.h"

#include <algorithm>
#include <array>

#include "PellakCore/base/Motivo.h"

namespace pellak::trash {
namespace {

constexpr std::array<std::string_view, 3> kProtette = {"/Library/Containers/",
                                                       "/Library/Group Containers/",
                                                       "/Library/Application Support/com.apple."};

std::string negato(std::string_view percorso) {
  const bool protetta = std::any_of(kProtette.begin(), kProtette.end(), [&](auto parte) {
    return percorso.find(parte) != std::string_view::npos;
  });
  return protetta ? "macOS protegge questa cartella: concedi a Pellak Cleaner l'Accesso completo "
                    "al disco (pannello Permessi), poi riprova"
                  : "permesso negato da macOS: concedi l'Accesso completo al disco (pannello "
                    "Permessi) oppure rimuovilo dal Finder";
}

}  // namespace

std::string registroNonLeggibile(const Error& errore) {
  return "registro non leggibile: " + motivoCompleto(errore);
}

std::string trashMessage(std::string_view percorso, const Error& errore) {
  switch (errore.kind) {
    case ErrorKind::denied:
      return negato(percorso);
    case ErrorKind::missing:
      return kSparito;
    case ErrorKind::exists:
      return "nel Cestino c'e' gia' un elemento con questo nome: svuota il Cestino e riprova";
    case ErrorKind::busy:
      return "e' in uso da un programma aperto: chiudilo e riprova";
    case ErrorKind::full:
      return "spazio esaurito sul volume: elemento non spostato";
    case ErrorKind::readOnly:
      return "il volume e' in sola lettura: elemento non spostato";
    case ErrorKind::mounted:
      return "contiene un altro disco: smontalo e riprova";
    default:
      return errore.text.empty() ? motivo(errore) : errore.text;
  }
}

}  // namespace pellak::trash
