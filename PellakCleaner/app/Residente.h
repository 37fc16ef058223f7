#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "app/Applicazione.h"
#include "shell/Notifiche.h"
#include "shell/Sorveglianza.h"

namespace pellak::app {

/// The application in the modes that last, the window and the bridge, with their periodic check.
class Residente {
 public:
  /// `concluso` is called on the engine's queue when a scan that the check started is over, before
  /// the user is told.
  Residente(std::unique_ptr<Native> native, Ambiente ambiente,
            std::function<void(const std::string&)> avviso,
            std::function<void()> concluso = nullptr);
  Residente(const Residente&) = delete;
  Residente& operator=(const Residente&) = delete;

  Applicazione& applicazione() { return applicazione_; }

  /// Begins to check every quarter of an hour, or as often as PELLAK_CHECK_SECONDS says.
  void sorveglia();

 private:
  // Filled once the engine is there and gone after it: its queue calls them.
  std::optional<shell::Notifiche> notifiche_;
  std::optional<shell::Sorveglianza> sorveglianza_;
  Applicazione applicazione_;
};

}  // namespace pellak::app
