#include <csignal>
#include <cstdio>
#include <exception>
#include <fmt/format.h>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <variant>

#include "app/Applicazione.h"
#include "app/ComandoApi.h"
#include "app/ComandoBridge.h"
#include "app/ComandoFinestra.h"
#include "app/ComandoLog.h"
#include "app/ComandoMap.h"
#include "app/ComandoRestore.h"
#include "app/ComandoScan.h"
#include "app/ComandoShow.h"
#include "app/ComandoTrash.h"
#include "app/Interruzione.h"
#include "app/RigaComando.h"
#include "app/Terminale.h"
#include "platform/LargeBlocks.h"
#include "platform/Native.h"

namespace pellak::app {
namespace {

/// Lines for standard error, each said once in the life of the process.
class Avvisi {
 public:
  void operator()(const std::string& testo) {
    const std::lock_guard<std::mutex> hold(lock_);
    if (!detti_.insert(testo).second) return;
    // Over the progress line, if one stands there.
    if (uscitaInterattiva()) fmt::print(stderr, "\r\033[K");
    fmt::print(stderr, "{}\n", perTerminale(testo));
  }

 private:
  std::mutex lock_;
  std::set<std::string> detti_;
};

/// Runs the command that was read; those that need no application are answered before.
struct Esecutore {
  Applicazione& applicazione;

  int operator()(const OpzioniScan& scan) const { return comandoScan(applicazione, scan); }
  int operator()(const OpzioniShow& show) const { return comandoShow(applicazione, show); }
  int operator()(const OpzioniMap& map) const { return comandoMap(applicazione, map); }
  int operator()(const OpzioniTrash& trash) const { return comandoTrash(applicazione, trash); }
  int operator()(const OpzioniLog& log) const { return comandoLog(applicazione, log); }
  int operator()(const OpzioniRestore& restore) const {
    return comandoRestore(applicazione, restore);
  }
  int operator()(const OpzioniApi& api) const {
    return comandoApi(applicazione, api.rotta, api.corpo);
  }
  int operator()(const OpzioniBridge& /*bridge*/) const { return 0; }
  int operator()(const OpzioniFinestra& /*finestra*/) const { return 0; }
  int operator()(const Uscito& uscito) const { return uscito.stato; }
};

int esegui(const Comando& comando) {
  if (const auto* uscito = std::get_if<Uscito>(&comando)) return uscito->stato;
  std::unique_ptr<Native> native = creaNative();
  Result<Ambiente> ambiente = leggiAmbiente(*native);
  if (!ambiente) {
    fmt::print(stderr, "{}\n", perTerminale(ambiente.error().text));
    return 1;
  }
  if (const std::string altrui = native->otherOwner(ambiente->home); !altrui.empty()) {
    fmt::print(
        stderr,
        "attenzione: sei root nella cartella utente di {0}. Quello che scrivo resta di {0}, "
        "ma nel suo Cestino può finire anche ciò che {0} poi non riesce né a ripristinare né "
        "a eliminare.\n",
        perTerminale(altrui));
  }
  const auto avvisi = std::make_shared<Avvisi>();
  const auto avviso = [avvisi](const std::string& testo) { (*avvisi)(testo); };
  if (std::holds_alternative<OpzioniFinestra>(comando)) {
    return comandoFinestra(std::move(native), std::move(*ambiente), avviso);
  }
  const AscoltoSegnali ascolto;
  if (std::holds_alternative<OpzioniBridge>(comando)) {
    return comandoBridge(std::move(native), std::move(*ambiente), avviso);
  }
  Applicazione applicazione(std::move(native), std::move(*ambiente), avviso);
  return std::visit(Esecutore{applicazione}, comando);
}

}  // namespace
}  // namespace pellak::app

int main(int argc, char** argv) {
  pellak::returnLargeBlocks();
  // A reader that goes away is noticed by the write that fails.
  std::signal(SIGPIPE, SIG_IGN);
  try {
    return pellak::app::esegui(pellak::app::leggiRigaComando(argc, argv));
  } catch (const std::exception& errore) {
    std::fputs("errore imprevisto: ", stderr);
    std::fputs(errore.what(), stderr);
    std::fputs("\n", stderr);
    return 1;
  }
}
