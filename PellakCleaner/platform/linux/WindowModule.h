#pragma once

#include <memory>

#include "platform/DesktopHost.h"
#include "platform/linux/SingleInstance.h"

namespace pellak::native {

/// The toolkit and the web engine are in a module of their own, loaded when a window is wanted:
/// the commands of a terminal start without them. Program and module come from one build.
constexpr const char* kWindowModule = "pellak-window.so";
/// Where an installation puts it, seen from the executable's folder.
constexpr const char* kInstalledModules = "../lib/pellak-cleaner";
constexpr const char* kWindowEntry = "pellakConnectWindow";

/// The module's entry: connects to the display and gives the host; false when none can be reached.
/// `istanza` outlives the host.
using ConnectWindow = bool(SingleInstance& istanza, std::unique_ptr<DesktopHost>& host);

}  // namespace pellak::native
