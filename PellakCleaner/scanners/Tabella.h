#pragma once

#include "PellakCore/ScanContext.h"

namespace pellak::scanners {

/// Every scanner there is, by the category it serves; what the engine is handed at start.
TabellaScanner tabellaScanner();

}  // namespace pellak::scanners
