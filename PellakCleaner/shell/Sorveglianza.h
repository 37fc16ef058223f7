#pragma once

#include <functional>
#include <string>
#include <utility>

#include "PellakCore/Engine.h"
#include "PellakCore/Impostazioni.h"
#include "PellakCore/Snapshot.h"
#include "platform/Clock.h"
#include "platform/Files.h"

namespace pellak::shell {

/// Starts a scan of everything when the last one of its own is as many days ago as the user has
/// set, and tells the result. It never moves anything.
///
/// `controlla` runs on the engine's queue, where `arma` puts it again and again; `concluso` is
/// called there by the engine.
class Sorveglianza {
 public:
  using Notifica = std::function<void(const std::string& messaggio, const std::string& titolo)>;

  /// All outlive it; it outlives the engine's queue.
  Sorveglianza(Engine& engine, Impostazioni& impostazioni, Files& files, const Clock& clock,
               Notifica notifica)
      : engine_(engine),
        impostazioni_(impostazioni),
        files_(files),
        clock_(clock),
        notifica_(std::move(notifica)) {}

  /// Puts the first check `secondi` from now, and each next one as long after it.
  void arma(double secondi);

  /// One check: starts the scan when it is due.
  void controlla();

  /// The scan that a check started is over.
  void concluso(const Snapshot& stato) const;

 private:
  double ultima() const;

  Engine& engine_;
  Impostazioni& impostazioni_;
  Files& files_;
  const Clock& clock_;
  const Notifica notifica_;
};

}  // namespace pellak::shell
