#include "scanners/Tabella.h"

#include <memory>

#include "platform/FileReader.h"
#include "scanners/duplicati/ScannerDuplicati.h"
#include "scanners/grandi/ScannerGrandi.h"
#include "scanners/regole/ScannerRegole.h"

namespace pellak::scanners {

TabellaScanner tabellaScanner(Files& files, const Store& store) {
  TabellaScanner tabella;
  tabella.regole = scanRegola;
  const std::shared_ptr<FileReader> reader = creaFileReader();
  const auto impronte = std::make_shared<Impronte>(files, store.impronte());
  tabella.speciali["duplicates"] = {
      "Ricerca duplicati (può richiedere minuti)...", [reader, impronte](const ScanContext& ctx) {
        return std::vector<Finding>{scanDuplicati(ctx, *reader, impronte.get())};
      }};
  tabella.speciali["large-old"] = {"Scansione: File grandi e vecchi...", scanGrandi};
  return tabella;
}

}  // namespace pellak::scanners
