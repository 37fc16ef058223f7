#include "PellakCore/PostiDelSistema.h"

#include <algorithm>
#include <array>

#include "PellakCore/base/BytePath.h"

namespace pellak {
namespace {

/// Besides these: all of "/lib…".
constexpr std::array<std::string_view, 11> kPosti = {"/bin",    "/sbin",    "/boot",       "/dev",
                                                     "/etc",    "/proc",    "/sys",        "/usr",
                                                     "/System", "/Library", "/private/etc"};
constexpr std::array<std::string_view, 2> kDiAvvio = {"/Library/LaunchAgents",
                                                      "/Library/LaunchDaemons"};

}  // namespace

std::span<const std::string_view> postiDelSistema() { return kPosti; }

bool delSistema(std::string_view percorso) {
  const auto contiene = [&](std::string_view cartella) {
    return dentroCartella(percorso, cartella);
  };
  return percorso.starts_with("/lib") || (std::any_of(kPosti.begin(), kPosti.end(), contiene) &&
                                          std::none_of(kDiAvvio.begin(), kDiAvvio.end(), contiene));
}

}  // namespace pellak
