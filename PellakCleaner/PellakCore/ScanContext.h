#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "PellakCore/Config.h"
#include "PellakCore/Contatore.h"
#include "PellakCore/Finding.h"
#include "PellakCore/Regole.h"
#include "platform/Clock.h"
#include "platform/DirectoryLister.h"
#include "platform/Mounts.h"

namespace pellak {

/// What a scanner works with. Lives for one section's scan; the scanner keeps no reference to it
/// afterwards.
struct ScanContext {
  const Regole& regole;                     ///< the rules with the settings written over them
  const Config& impostazioni;               ///< as they were when the section began
  std::string home;                         ///< the home folder, no trailing slash
  std::function<bool()> stop;               ///< true once a stop is wanted; any thread
  std::function<void(std::string)> status;  ///< progress line of the section; any thread
  /// The section's counter. It is installed on the scanner's own thread and not inherited by
  /// others: walks tell their refusals to a callback, which adds them here.
  Contatore& contatore;
  DirectoryLister& lister;
  Clock& clock;
  std::vector<Mount> volumi = {};  ///< what is mounted; empty when the system does not tell
  /// What the section's result line says when nothing was found and nothing refused; on the
  /// scanner's own thread. May be empty.
  std::function<void(std::string)> nota = {};
};

/// A category with a scanner of its own.
struct ScannerSpeciale {
  std::string stato;  ///< the section's status line while it runs
  std::function<std::vector<Finding>(const ScanContext&)> esegui;
};

/// The scanners the engine is handed at start. A category of the catalogue that is missing here
/// is skipped.
struct TabellaScanner {
  /// For every category of the rules file; may be empty.
  std::function<Finding(const ScanContext&, const RegolaCategoria&)> regole;
  std::map<std::string, ScannerSpeciale, std::less<>> speciali;
};

}  // namespace pellak
