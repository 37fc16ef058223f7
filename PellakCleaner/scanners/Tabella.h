#pragma once

#include "PellakCore/ScanContext.h"
#include "PellakCore/Store.h"
#include "platform/Files.h"

namespace pellak::scanners {

/// Every scanner there is, by the category it serves; what the engine is handed at start. What
/// they keep between scans is in the store's folder; `files` outlives them.
TabellaScanner tabellaScanner(Files& files, const Store& store);

}  // namespace pellak::scanners
