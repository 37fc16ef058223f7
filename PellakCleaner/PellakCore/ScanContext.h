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

namespace pellak {

/// What a scanner works with. Lives for one section's scan; the scanner keeps no reference to it
/// afterwards.
struct ScanContext {
  const Regole& regole;                     ///< the rules with the settings written over them
  const Config& impostazioni;               ///< as they were when the section began
  std::string home;                         ///< the home folder, no trailing slash
  std::function<bool()> stop;               ///< true once a stop is wanted; any thread
  std::function<void(std::string)> status;  ///< progress line of the section; any thread
  /// The section's counter. It is installed on the scanner's own thread; work handed to other
  /// threads installs it there when its refusals belong to the section.
  Contatore& contatore;
  DirectoryLister& lister;
  Clock& clock;
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
