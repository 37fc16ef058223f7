#pragma once

#include <optional>

#include "PellakCore/Store.h"
#include "platform/Files.h"
#include "platform/LoginEntry.h"

namespace pellak {

/// Writes the login item file and the entry of the desktop's own, when there is one (`attivo`), or
/// takes them away; both succeed when nothing is left to do. It takes effect at the next login.
Result<void> applicaLoginItem(Files& files, const Store& store,
                              const std::optional<LoginEntry>& altra, bool attivo);

}  // namespace pellak
