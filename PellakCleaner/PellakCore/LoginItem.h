#pragma once

#include "PellakCore/Store.h"
#include "platform/Files.h"

namespace pellak {

/// Writes the login item file (`attivo`) or takes it away; both succeed when nothing is left to
/// do. It takes effect at the next login.
Result<void> applicaLoginItem(Files& files, const Store& store, bool attivo);

}  // namespace pellak
