#pragma once

#include "platform/ToolFamily.h"

namespace pellak::shell {

/// Texts of the window that name the system they run on.
struct TestiSistema {
  const char* informazioni;   ///< the line of the About window
  const char* tieniSveglio;   ///< the menu entry of an idle keep-awake
  const char* motivoSveglio;  ///< what the system shows as the reason for staying awake
};

constexpr TestiSistema testiSistema(FamigliaStrumenti famiglia) {
  if (famiglia == FamigliaStrumenti::macos) {
    return {"Pulizia onesta per macOS:\ntutto nel Cestino, sempre reversibile.",
            "Tieni sveglio il Mac", "Pellak Cleaner: tieni sveglio il Mac"};
  }
  return {"Pulizia onesta per Linux:\ntutto nel Cestino, sempre reversibile.",
          "Tieni sveglio il computer", "Pellak Cleaner: tieni sveglio il computer"};
}

}  // namespace pellak::shell
