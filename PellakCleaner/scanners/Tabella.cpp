#include "scanners/Tabella.h"

#include "scanners/regole/ScannerRegole.h"

namespace pellak::scanners {

TabellaScanner tabellaScanner() {
  TabellaScanner tabella;
  tabella.regole = scanRegola;
  return tabella;
}

}  // namespace pellak::scanners
