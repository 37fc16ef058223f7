#pragma once

#include <string>

#include "platform/Result.h"

namespace pellak::native {

/// Fill in `Error::causa` of a move that failed, by looking at the place once more: only failures
/// pay for it. A reason that is known already stays; where the kind of error says it all, none is
/// added. Any thread.

/// The item at `percorso` can't leave its folder.
Error itemStays(Error errore, const std::string& percorso);

/// The Trash of the volume that `percorso` lies on can't take it; `cestino` may be empty.
Error trashRefuses(Error errore, const std::string& percorso, const std::string& cestino);

/// An item of the Trash can't come back to `destinazione`.
Error placeRefuses(Error errore, const std::string& destinazione);

}  // namespace pellak::native
