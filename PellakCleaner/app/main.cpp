#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fmt/format.h>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>

#include "app/Applicazione.h"
#include "app/ComandoApi.h"
#include "app/ComandoBridge.h"
#include "app/ComandoMap.h"
#include "app/ComandoScan.h"
#include "app/ComandoShow.h"
#include "app/RigaComando.h"
#include "app/Terminale.h"
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

int apriFinestra() {
  const bool schermo =
      std::getenv("DISPLAY") != nullptr || std::getenv("WAYLAND_DISPLAY") != nullptr;
  fmt::print(stderr,
             "{}: usa il terminale con «pellak-cleaner scan», «show», «api» o «bridge» (aiuto: "
             "«pellak-cleaner --help»).\n",
             schermo ? "questa versione non ha ancora la finestra" : "nessuno schermo disponibile");
  return 1;
}

int esegui(const Comando& comando) {
  if (const auto* uscito = std::get_if<Uscito>(&comando)) return uscito->stato;
  if (std::holds_alternative<OpzioniFinestra>(comando)) return apriFinestra();

  std::unique_ptr<Native> native = creaNative();
  Result<Ambiente> ambiente = leggiAmbiente(*native, native->platform().files);
  if (!ambiente) {
    fmt::print(stderr, "{}\n", perTerminale(ambiente.error().text));
    return 1;
  }
  const auto avvisi = std::make_shared<Avvisi>();
  Applicazione applicazione(std::move(native), std::move(*ambiente),
                            [avvisi](const std::string& testo) { (*avvisi)(testo); });
  if (const auto* scan = std::get_if<OpzioniScan>(&comando))
    return comandoScan(applicazione, *scan);
  if (const auto* show = std::get_if<OpzioniShow>(&comando))
    return comandoShow(applicazione, *show);
  if (const auto* map = std::get_if<OpzioniMap>(&comando)) return comandoMap(applicazione, *map);
  if (const auto* api = std::get_if<OpzioniApi>(&comando)) {
    return comandoApi(applicazione, api->rotta, api->corpo);
  }
  return comandoBridge(applicazione);
}

}  // namespace
}  // namespace pellak::app

int main(int argc, char** argv) {
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
