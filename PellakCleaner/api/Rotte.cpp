#include "api/Rotte.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "api/Gestori.h"

namespace pellak::api {
namespace {

using namespace gestori;

constexpr bool kMutating = true;

constexpr auto kRotte = std::to_array<Rotta>({
    {"/api/state", state},
    {"/api/log", gestori::log},
    {"/api/icon", icon},
    {"/api/icons", icons},
    {"/api/mappa", mappa},
    {"/api/brew_upgrade", nonDisponibile},
    {"/api/apri", apri},
    {"/api/mostra", mostra},
    {"/api/update", nonDisponibile},
    {"/api/update/scarica", nonDisponibile},
    {"/api/update/installa", nonDisponibile},
    {"/api/update/stato", nonDisponibile},
    {"/api/app_upd_avvia", nonDisponibile},
    {"/api/app_upd_stato", nonDisponibile},
    {"/api/app_dl", nonDisponibile},
    {"/api/perms", perms},
    {"/api/perms/fda", permsFda},
    {"/api/perms/automation", permsAutomation},
    {"/api/app_attiva", appAttiva},
    {"/api/chiudi_app", nonDisponibile},
    {"/api/manutenzione", nonDisponibile, Coda::lenta},
    {"/api/processi", nonDisponibile},
    {"/api/energia", nonDisponibile, Coda::lenta},
    {"/api/batteria/viva", nonDisponibile},
    {"/api/batteria", nonDisponibile},
    {"/api/rete", nonDisponibile},
    {"/api/rete/conn", nonDisponibile},
    {"/api/firewall", nonDisponibile},
    {"/api/firewall/applica", nonDisponibile},
    {"/api/processi/chiudi", nonDisponibile},
    {"/api/regolazioni", nonDisponibile, Coda::lenta},
    {"/api/settings", settings},
    {"/api/scan", scan},
    {"/api/stop", stop},
    {"/api/trash", gestori::trash, Coda::ordinaria, kMutating},
    {"/api/avvio", nonDisponibile},
    {"/api/voci", voci},
    {"/api/keep", keep, Coda::ordinaria, kMutating},
    {"/api/keep_all", keepAll, Coda::ordinaria, kMutating},
    {"/api/trash_sel", trashSel, Coda::ordinaria, kMutating},
    {"/api/trash_group", trashGroup, Coda::ordinaria, kMutating},
    {"/api/dup_scarta", dupScarta, Coda::ordinaria, kMutating},
    {"/api/reveal", reveal},
    {"/api/restore", restore, Coda::ordinaria, kMutating},
});

constexpr bool percorsiUnici() {
  for (std::size_t i = 0; i < kRotte.size(); ++i) {
    for (std::size_t j = i + 1; j < kRotte.size(); ++j) {
      if (kRotte[i].percorso == kRotte[j].percorso) return false;
    }
  }
  return true;
}
static_assert(percorsiUnici());
static_assert(std::all_of(kRotte.begin(), kRotte.end(), [](const Rotta& rotta) {
  return rotta.percorso.starts_with("/api/") && rotta.gestore != nullptr;
}));

}  // namespace

std::span<const Rotta> rotte() { return kRotte; }

const Rotta* cercaRotta(std::string_view percorso) {
  const auto trovata = std::find_if(kRotte.begin(), kRotte.end(),
                                    [&](const Rotta& rotta) { return rotta.percorso == percorso; });
  return trovata == kRotte.end() ? nullptr : &*trovata;
}

}  // namespace pellak::api
