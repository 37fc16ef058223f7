#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/Applications.h"

namespace pellak::native {

/// One application as its ".desktop" file describes it.
struct DesktopEntry {
  ApplicationInfo info;
  std::string plainName;  ///< name without translation
  std::string icon;       ///< absolute path, or a name for the icon theme
  std::string flatpak;    ///< application id when it runs in a Flatpak sandbox
  std::string snap;       ///< package name when it runs as a Snap
};

/// The installed applications at one moment.
class DesktopEntries {
 public:
  /// Reads the "applications" folder below each of `dataFolders`. An entry hides those of the same
  /// id in later folders, also when it says that it is itself hidden.
  static DesktopEntries read(const std::vector<std::string>& dataFolders);

  /// Whether no folder that was read has changed since.
  bool current() const;

  /// By id (with or without ".desktop"), path of file or program, shown name.
  const DesktopEntry* find(std::string_view key) const;

 private:
  void readFolder(const std::string& folder);
  void readFile(const std::string& path, std::string id);

  std::vector<DesktopEntry> entries_;
  std::set<std::string> seen_;                                ///< ids of entries and of hidden ones
  std::vector<std::pair<std::string, std::int64_t>> stamps_;  ///< folders and their times
};

/// The program that an "Exec" line starts: behind "env", assignments and the like, and of an
/// interpreter the script. Absolute when it could be found; empty when there is no telling.
std::string programOf(const std::string& exec);

/// Whether a program of that file name runs other programs' code, so that its name says nothing.
bool isInterpreter(std::string_view fileName);

}  // namespace pellak::native
