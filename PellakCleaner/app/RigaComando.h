#pragma once

#include <string>
#include <variant>

#include "app/ComandoLog.h"
#include "app/ComandoMap.h"
#include "app/ComandoRestore.h"
#include "app/ComandoScan.h"
#include "app/ComandoShow.h"
#include "app/ComandoTrash.h"

namespace pellak::app {

struct OpzioniApi {
  std::string rotta;
  std::string corpo = "{}";
};
struct OpzioniBridge {};
struct OpzioniFinestra {};
/// Nothing to run: help, version or a mistake; the text was printed and this is the exit status.
struct Uscito {
  int stato = 0;
};

using Comando = std::variant<OpzioniFinestra, OpzioniScan, OpzioniShow, OpzioniMap, OpzioniTrash,
                             OpzioniLog, OpzioniRestore, OpzioniApi, OpzioniBridge, Uscito>;

/// Reads the command line. Help and version go to standard output, mistakes in Italian to
/// standard error (exit status 2).
Comando leggiRigaComando(int argc, const char* const* argv);

}  // namespace pellak::app
