#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/Clock.h"
#include "platform/KeepAwake.h"
#include "platform/MainLoop.h"
#include "shell/TestiSistema.h"

namespace pellak::shell {

/// How the menu shows the keep-awake entry.
struct TitoloSveglio {
  std::string testo;
  bool spunta = false;

  bool operator==(const TitoloSveglio&) const = default;
};

/// Keeps the computer awake for a chosen time: off, on until a moment, on without an end. At most
/// one request to the system exists at any time. Main thread.
class Sveglio {
 public:
  static constexpr double kMezzOra = 1800;
  static constexpr double kDueOre = 7200;

  /// `cambiato` is told after every change. All outlive this object.
  Sveglio(KeepAwake& sistema, MainLoop& loop, const Clock& clock, const TestiSistema& testi,
          std::function<void()> cambiato);
  ~Sveglio();
  Sveglio(const Sveglio&) = delete;
  Sveglio& operator=(const Sveglio&) = delete;

  /// Ends what is on and begins anew; without `durata` (seconds) there is no end. When the system
  /// refuses it stays off.
  void avvia(std::optional<double> durata);
  void ferma();

  bool attivo() const { return sveglioID_.has_value(); }
  /// Counts the minutes left at the moment of the call.
  TitoloSveglio titolo() const;

 private:
  KeepAwake& sistema_;
  MainLoop& loop_;
  const Clock& clock_;
  const TestiSistema testi_;
  const std::function<void()> cambiato_;
  std::optional<std::uint32_t> sveglioID_;
  std::optional<double> sveglioScade_;  ///< seconds since 1970
  std::optional<MainLoop::TimerId> sveglioTimer_;
};

}  // namespace pellak::shell
