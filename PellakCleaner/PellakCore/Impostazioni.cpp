#include "PellakCore/Impostazioni.h"

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "PellakCore/LoginItem.h"
#include "PellakCore/base/Json.h"

namespace pellak {
namespace {

constexpr std::size_t kMaxBytes = std::size_t{4} << 20U;

struct Letto {
  Config config;
  bool guasto = false;          ///< something is there, but it is no settings document
  std::optional<Error> errore;  ///< something is there and can't be read
};

Letto leggiFile(Files& files, const Store& store) {
  const Result<std::string> testo = files.read(store.impostazioni(), kMaxBytes);
  if (!testo) {
    const ErrorKind kind = testo.error().kind;
    if (kind == ErrorKind::missing) return {};
    if (kind == ErrorKind::invalid) return {{}, true, {}};
    return {{}, false, testo.error()};
  }
  const Result<JsonDocument> documento = JsonDocument::parse(*testo);
  if (!documento || !documento->radice().oggetto()) return {{}, true, {}};
  return {Config::daJson(documento->radice()), false, {}};
}

}  // namespace

Impostazioni::Impostazioni(Files& files, Store store, std::optional<LoginEntry> altraVoce)
    : files_(files), store_(std::move(store)), altraVoce_(std::move(altraVoce)) {}

Config Impostazioni::leggi() const { return leggiFile(files_, store_).config; }

Result<Config> Impostazioni::scrivi(Json richiesta) {
  Config nuove;
  {
    const auto blocco = files_.lock(store_.blocco());
    if (!blocco) return blocco.error();
    Letto letto = leggiFile(files_, store_);
    // Writing the defaults over settings that are only unreadable would lose them.
    if (letto.errore) return *letto.errore;
    if (letto.guasto) {
      const auto daParte = files_.setAside(store_.impostazioni());
      if (!daParte) return daParte.error();
    }
    nuove = std::move(letto.config);
    nuove.applica(richiesta);
    if (const auto accesso = richiesta["login_item"].booleano()) {
      if (const auto fatto = applicaLoginItem(files_, store_, altraVoce_, *accesso); !fatto) {
        return fatto.error();
      }
    }
    const std::string testo = nuove.serializza();
    const std::array<std::string_view, 1> pezzi = {testo};
    if (const auto scritto = files_.replace(store_.impostazioni(), pezzi); !scritto) {
      return scritto.error();
    }
  }
  annuncia();
  return nuove;
}

Result<Config> Impostazioni::azzera() {
  {
    // A folder that can't be locked can't hold a settings file that we could remove either.
    const auto blocco = files_.lock(store_.blocco());
    if (!blocco) return blocco.error();
    if (const auto tolto = applicaLoginItem(files_, store_, altraVoce_, false); !tolto)
      return tolto.error();
    if (const auto tolto = files_.removeOwn(store_.impostazioni()); !tolto) return tolto.error();
  }
  annuncia();
  return Config();
}

std::uint64_t Impostazioni::osserva(std::function<void()> avviso) {
  const std::lock_guard<std::mutex> hold(osservatoriLock_);
  osservatori_.emplace(prossimo_, std::move(avviso));
  return prossimo_++;
}

void Impostazioni::dimentica(std::uint64_t osservatore) {
  const std::lock_guard<std::mutex> hold(osservatoriLock_);
  osservatori_.erase(osservatore);
}

void Impostazioni::annuncia() {
  const std::lock_guard<std::mutex> hold(osservatoriLock_);
  for (const auto& [token, avviso] : osservatori_) avviso();
}

}  // namespace pellak
