#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>

#include "PellakCore/Config.h"
#include "PellakCore/Store.h"
#include "platform/Files.h"
#include "platform/LoginEntry.h"
#include "platform/Result.h"

namespace pellak {

class Json;

/// The settings file and those who want to know when it changes. Any thread.
///
/// Every read looks at the file, so a change made by another process is seen; every write holds
/// the store's lock from its read to its rename, so two processes never lose each other's
/// settings.
class Impostazioni {
 public:
  /// `altraVoce` is applied with the login item.
  Impostazioni(Files& files, Store store, std::optional<LoginEntry> altraVoce = {});

  /// The current settings; defaults when the file is missing or broken.
  Config leggi() const;

  /// Takes a write request over the current settings, applies the login item and stores the
  /// result. A file that can't be read as settings is kept aside under a name
  /// like "impostazioni.json.guasto" before it is replaced. On an error nothing was stored.
  Result<Config> scrivi(Json richiesta);

  /// Back to the defaults, login item included.
  Result<Config> azzera();

  /// Calls `avviso` after every accepted write and reset, on the writer's thread, until the
  /// token is given back. Observers must not add or remove observers.
  std::uint64_t osserva(std::function<void()> avviso);
  void dimentica(std::uint64_t osservatore);

 private:
  void annuncia();

  Files& files_;
  const Store store_;
  const std::optional<LoginEntry> altraVoce_;
  std::mutex osservatoriLock_;
  std::map<std::uint64_t, std::function<void()>> osservatori_;
  std::uint64_t prossimo_ = 1;
};

}  // namespace pellak
