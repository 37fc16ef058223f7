#include "trash/Custode.h"

#include <algorithm>
#include <array>

#include "PellakCore/PostiDelSistema.h"
#include "PellakCore/base/BytePath.h"

namespace pellak::trash {
namespace {

/// Things may come back to it, but nothing of it may go.
constexpr std::string_view kSistemaVivo = "/private/var/db";

constexpr std::array<std::string_view, 15> kDiCasa = {
    "Desktop", "Documents", "Downloads", "Library", "Library/Caches",
    "Movies",  "Music",     "Pictures",  "Public",  "Templates",
    "Videos",  ".config",   ".local",    ".cache",  "Applications"};

}  // namespace

std::string Custode::causaDelRifiuto(std::string_view percorso) const {
  if (!standard(percorso)) return {};
  if (can_.insideTrash(percorso)) return "è già nel Cestino";
  if (dentroCartella(percorso, store_.cartella())) return "è un file di Pellak Cleaner";
  if (delSistema(percorso) || dentroCartella(percorso, kSistemaVivo)) {
    return "è un posto del sistema: non lo tocco";
  }
  return "è una cartella di base: può andare nel Cestino solo quello che contiene";
}

bool Custode::ammesso(std::string_view percorso) const {
  const std::string_view home = store_.home();
  // What goes must be able to come back.
  if (!destinazione(percorso) || percorso.rfind('/') == 0) return false;
  if (dentroCartella(home, percorso) || dentroCartella(percorso, kSistemaVivo)) return false;
  if (dentroCartella(kSistemaVivo, percorso)) return false;
  if (dentroCartella(percorso, home)) {
    const std::string_view inCasa = percorso.substr(home == "/" ? 1 : home.size() + 1);
    if (std::find(kDiCasa.begin(), kDiCasa.end(), inCasa) != kDiCasa.end()) return false;
  }
  return std::find(cartelle_.begin(), cartelle_.end(), percorso) == cartelle_.end();
}

bool Custode::destinazione(std::string_view percorso) const {
  if (!standard(percorso) || delSistema(percorso)) return false;
  if (dentroCartella(percorso, store_.cartella()) || dentroCartella(store_.cartella(), percorso)) {
    return false;
  }
  return !can_.insideTrash(percorso);
}

}  // namespace pellak::trash
