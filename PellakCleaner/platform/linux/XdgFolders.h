#pragma once

#include <string>
#include <vector>

namespace pellak::native {

/// The base folders of the desktop's shared files, most important first.
struct XdgFolders {
  std::string home;
  std::string config;             ///< the user's configuration
  std::vector<std::string> data;  ///< applications, icons and pixmaps lie in folders below
};

/// From the environment, with the usual defaults below the home folder; what Flatpak and Snap
/// export comes last. Relative entries are ignored. Only names: nothing is read.
XdgFolders xdgFolders();

/// The user's own folder of shared files, the first of `XdgFolders::data`.
std::string xdgDataHome();

}  // namespace pellak::native
