#include "platform/linux/XdgFolders.h"

#include <algorithm>
#include <cstdlib>
#include <glib.h>
#include <string_view>

namespace pellak::native {
namespace {

std::string variable(const char* name, const std::string& otherwise) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? std::string(value) : otherwise;
}

std::string folderVariable(const char* name, const std::string& otherwise) {
  std::string value = variable(name, otherwise);
  return value.starts_with('/') ? value : otherwise;
}

std::string homeFolder() { return folderVariable("HOME", g_get_home_dir()); }

void addOnce(std::vector<std::string>& folders, std::string_view folder) {
  while (folder.size() > 1 && folder.back() == '/') folder.remove_suffix(1);
  if (!folder.starts_with('/')) return;
  if (std::find(folders.begin(), folders.end(), folder) == folders.end()) {
    folders.emplace_back(folder);
  }
}

}  // namespace

std::string xdgDataHome() {
  std::string folder = folderVariable("XDG_DATA_HOME", homeFolder() + "/.local/share");
  while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
  return folder;
}

XdgFolders xdgFolders() {
  XdgFolders folders;
  folders.home = homeFolder();
  folders.config = folderVariable("XDG_CONFIG_HOME", folders.home + "/.config");
  const std::string own = xdgDataHome();
  addOnce(folders.data, own);
  const std::string shared = variable("XDG_DATA_DIRS", "/usr/local/share:/usr/share");
  for (std::size_t begin = 0; begin <= shared.size();) {
    const std::size_t end = std::min(shared.find(':', begin), shared.size());
    addOnce(folders.data, std::string_view(shared).substr(begin, end - begin));
    begin = end + 1;
  }
  addOnce(folders.data, own + "/flatpak/exports/share");
  addOnce(folders.data, "/var/lib/flatpak/exports/share");
  addOnce(folders.data, "/var/lib/snapd/desktop");
  return folders;
}

}  // namespace pellak::native
