#pragma once

#include <string>
#include <string_view>

namespace pellak::posix {

/// The folder that a path lies in ("/" for what lies at the top). Without a slash ".".
inline std::string folderOf(std::string_view percorso) {
  const std::size_t barra = percorso.rfind('/');
  if (barra == std::string_view::npos) return ".";
  return std::string(percorso.substr(0, barra == 0 ? 1 : barra));
}

/// What follows the last slash.
inline std::string_view nameOf(std::string_view percorso) {
  return percorso.substr(percorso.rfind('/') + 1);
}

}  // namespace pellak::posix
