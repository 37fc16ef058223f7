#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/DesktopHost.h"

// For .mm files only.
namespace pellak::native {

/// Shows a modal message and answers once, when it closes. The call returns before it shows, and
/// the main loop goes on meanwhile. Escape counts as the last button, and so does the end of the
/// application. Main thread.
void showAlert(const AlertPlan& avviso, std::function<void(std::size_t)> scelto);

/// Lets the user choose folders; see `DesktopHost::chooseFolders`. Main thread.
void chooseFolders(const std::string& pulsante, const std::string& messaggio,
                   std::function<void(std::vector<std::string>)> scelte);

}  // namespace pellak::native
