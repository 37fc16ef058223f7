#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "PellakCore/Contatore.h"
#include "PellakCore/Finding.h"

namespace pellak {

/// Scan state of one section. Guarded by the engine's lock.
struct Sec {
  bool scanning = false;  ///< a scan of this section runs now
  bool scanned = false;   ///< at least one scan ended, or results were loaded
  std::string status;
  std::string esito;        ///< the last result line; what is saved while a scan shows its progress
  bool daSalvare = false;   ///< its last scan is not in the results file
  std::string nonSalvata;   ///< why not, when that was tried
  std::int64_t denied = 0;  ///< paths the last scan could not read
  std::vector<RadiceNegata> deniedTop;
  double lastScan = 0;  ///< seconds since 1970; 0 when never scanned
  std::vector<Finding> findings;
  /// Moves whenever `findings` or the icons they show change; the written form of the findings
  /// is kept by it.
  std::uint64_t findingsVer = 0;

  std::int64_t totale() const;
  bool haVoci() const;
  /// The status as it is shown: a result that a new start would not find says so.
  std::string statoMostrato() const;
};

/// The result line of a section whose scan ended; `senzaNulla` when it found nothing and nothing
/// was refused.
std::string statoFinale(const Sec& sezione, const std::string& senzaNulla = "Niente da segnalare.");

}  // namespace pellak
