#include "trash/Custode.h"

#include <algorithm>
#include <array>

#include "PellakCore/base/BytePath.h"

namespace pellak::trash {
namespace {

/// Never written to, whatever a record says. Besides these: all of "/lib…".
constexpr std::array<std::string_view, 11> kMaiDestinazione = {
    "/bin", "/sbin", "/boot",   "/dev",     "/etc",        "/proc",
    "/sys", "/usr",  "/System", "/Library", "/private/etc"};
constexpr std::array<std::string_view, 2> kDiAvvio = {"/Library/LaunchAgents",
                                                      "/Library/LaunchDaemons"};

/// Things may come back to it, but nothing of it may go.
constexpr std::string_view kSistemaVivo = "/private/var/db";

constexpr std::array<std::string_view, 15> kDiCasa = {
    "Desktop", "Documents", "Downloads", "Library", "Library/Caches",
    "Movies",  "Music",     "Pictures",  "Public",  "Templates",
    "Videos",  ".config",   ".local",    ".cache",  "Applications"};

}  // namespace

bool Custode::ammesso(std::string_view percorso) const {
  const std::string_view home = store_.home();
  // What goes must be able to come back.
  if (!destinazione(percorso) || percorso.rfind('/') == 0) return false;
  if (dentroCartella(home, percorso) || dentroCartella(percorso, kSistemaVivo)) return false;
  if (dentroCartella(percorso, home)) {
    const std::string_view inCasa = percorso.substr(home == "/" ? 1 : home.size() + 1);
    if (std::find(kDiCasa.begin(), kDiCasa.end(), inCasa) != kDiCasa.end()) return false;
  }
  return std::find(cartelle_.begin(), cartelle_.end(), percorso) == cartelle_.end();
}

bool Custode::destinazione(std::string_view percorso) const {
  const auto contiene = [&](std::string_view cartella) {
    return dentroCartella(percorso, cartella);
  };
  if (!standard(percorso) || percorso.starts_with("/lib")) return false;
  if (contiene(store_.cartella()) || dentroCartella(store_.cartella(), percorso)) return false;
  const bool sistema = std::any_of(kMaiDestinazione.begin(), kMaiDestinazione.end(), contiene);
  if (sistema && std::none_of(kDiAvvio.begin(), kDiAvvio.end(), contiene)) return false;
  return !can_.insideTrash(percorso);
}

}  // namespace pellak::trash
