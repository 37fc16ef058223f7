#include "PellakCore/Catalogo.h"

#include <array>

namespace pellak {
namespace {

using Ids = std::string_view;

constexpr std::array<Ids, 13> kSviluppoCats = {"xcode-derived",
                                               "xcode-devicesupport",
                                               "xcode-archives",
                                               "coresimulator-caches",
                                               "coresimulator-devices",
                                               "brew-cache",
                                               "npm-cache",
                                               "yarn-cache",
                                               "pnpm-store",
                                               "pip-cache",
                                               "cargo-cache",
                                               "go-cache",
                                               "gradle-cache"};
constexpr std::array<Ids, 2> kSviluppoSpecials = {"orphan-node-modules", "docker-disk"};
constexpr std::array<Ids, 3> kApplicazioniSpecials = {"app-updates", "apps", "app-leftovers"};
constexpr std::array<Ids, 1> kDuplicatiSpecials = {"duplicates"};
constexpr std::array<Ids, 1> kGrandiSpecials = {"large-old"};
constexpr std::array<Ids, 6> kPuliziaCats = {"mail-downloads", "old-installers", "app-logs",
                                             "ios-updates",    "dropbox-cache",  "trash"};
constexpr std::array<Ids, 5> kPuliziaSpecials = {"user-caches", "electron-caches", "trash-volumes",
                                                 "saved-states", "ds-store"};
constexpr std::array<Ids, 2> kPrivacySpecials = {"browser-privacy", "recent-items"};
constexpr std::array<Ids, 2> kAvvioSpecials = {"startup-user", "startup-system"};
constexpr std::array<Ids, 1> kSistemaCats = {"ios-backups"};
constexpr std::array<Ids, 1> kSistemaSpecials = {"tm-snapshots"};

constexpr std::array<Meta, 8> kMetas = {{
    {"sviluppo", "Sviluppo",
     "Cache e file temporanei degli strumenti di sviluppo. Si rigenerano automaticamente al "
     "successivo utilizzo: spazio recuperabile senza alcun rischio.",
     kSviluppoCats, kSviluppoSpecials},
    {"applicazioni",
     "Applicazioni",
     "Disinstallazione completa delle applicazioni, dati nascosti inclusi, e rilevamento dei "
     "residui lasciati dalle app già eliminate.",
     {},
     kApplicazioniSpecials},
    {"duplicati",
     "Duplicati",
     "Copie identiche dello stesso file, verificate byte per byte: zero falsi positivi. Ogni "
     "gruppo mostra tutte le posizioni e consente di scegliere quale copia conservare.",
     {},
     kDuplicatiSpecials},
    {"grandi",
     "File grandi e vecchi",
     "Due elenchi: i file più pesanti del disco, subito visibili, e quelli dimenticati da mesi. "
     "Solo segnalazione, nessuna rimozione automatica: scegli tu.",
     {},
     kGrandiSpecials},
    {"pulizia", "Pulizia generale",
     "Allegati di Mail, installer datati, Cestino e cache delle applicazioni: pulizia mirata, "
     "voce per voce.",
     kPuliziaCats, kPuliziaSpecials},
    {"privacy",
     "Privacy",
     "Cronologia, cookie e cache dei browser. Tutto nel Cestino, reversibile. Chiudi il browser "
     "prima di pulire: i cookie ti disconnettono dai siti. Password e moduli non vengono "
     "toccati.",
     {},
     kPrivacySpecials},
    {"avvio",
     "App di avvio",
     "Le app e i servizi che partono da soli all'accensione. Disattivarli velocizza l'avvio e "
     "alleggerisce la memoria: non disinstalla nulla.",
     {},
     kAvvioSpecials},
    {"sistema", "Backup e snapshot",
     "Snapshot di Time Machine e backup dei dispositivi iOS: spazio gestito da macOS. Quadro "
     "completo e strumento corretto per ogni intervento.",
     kSistemaCats, kSistemaSpecials},
}};

}  // namespace

std::span<const Meta> metas() { return kMetas; }

const Meta* cercaMeta(std::string_view id) {
  for (const Meta& meta : kMetas) {
    if (meta.id == id) return &meta;
  }
  return nullptr;
}

}  // namespace pellak
