#pragma once

#include <optional>
#include <string>
#include <vector>

#include "PellakCore/Config.h"
#include "platform/Clock.h"
#include "platform/DesktopHost.h"
#include "platform/SystemProbe.h"

namespace pellak::shell {

/// The live readings of the status menu and of the bar. Rates and busy fractions are differences
/// to the sample before. Main thread.
class LettureSistema {
 public:
  /// Takes the first sample. All outlive this object.
  LettureSistema(SystemProbe& probe, const Clock& clock, std::string home);

  /// A new sample, as rows for the menu; those the user has switched off are left out.
  std::vector<StatRow> righe(const Config& impostazioni);

  /// A new sample in a few characters for the bar.
  std::string barra(const Config& impostazioni);

 private:
  struct Rete {
    double rx = 0;
    double tx = 0;
    double t = 0;  ///< seconds since 1970
  };
  /// Bytes a second.
  struct Velocita {
    double rx = 0;
    double tx = 0;
  };

  std::vector<double> occupati();
  std::optional<Velocita> velocita();
  StatRow rigaCpu();
  std::optional<StatRow> rigaRete();
  std::optional<StatRow> rigaDisco() const;
  std::optional<StatRow> rigaMemoria() const;
  std::optional<StatRow> rigaBatteria() const;

  SystemProbe& probe_;
  const Clock& clock_;
  const std::string home_;
  std::vector<CoreTicks> prevCpu_;
  std::optional<Rete> prevNet_;
};

}  // namespace pellak::shell
