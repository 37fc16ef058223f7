#include "platform/linux/IconThemeLinux.h"

#include <algorithm>
#include <array>
#include <gio/gio.h>
#include <optional>
#include <sys/stat.h>
#include <utility>

#include "platform/linux/GlibPtr.h"
#include "platform/linux/KeyFile.h"
#include "platform/linux/SessionBus.h"

namespace pellak::native {
namespace {

constexpr std::size_t kMaxIndexBytes = std::size_t{1} << 20U;
constexpr std::size_t kMaxThemes = 16;
constexpr std::size_t kMaxFolders = 2000;
constexpr int kMaxSide = 4096;
constexpr std::array<const char*, 3> kSuffixes{".png", ".svg", ".xpm"};
constexpr const char* kFallbackTheme = "hicolor";

std::vector<std::string> themeBases(const XdgFolders& folders) {
  std::vector<std::string> bases{folders.home + "/.icons"};
  for (const std::string& data : folders.data) bases.push_back(data + "/icons");
  return bases;
}

std::string below(std::string folder, std::string_view name) {
  folder += '/';
  folder += name;
  return folder;
}

bool isFolder(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool isFile(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

/// One path component that means what it says.
bool plainName(std::string_view name) {
  return !name.empty() && name.front() != '.' &&
         name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

/// The desktop's setting. Asked only while a message bus runs, because the settings library would
/// otherwise try to start one.
std::string themeOfDesktop() {
  constexpr const char* kSchema = "org.gnome.desktop.interface";
  constexpr const char* kKey = "icon-theme";
  if (sessionBusAddress().empty()) return {};
  GSettingsSchemaSource* source = g_settings_schema_source_get_default();
  if (source == nullptr) return {};
  GSettingsSchema* schema = g_settings_schema_source_lookup(source, kSchema, 1);
  if (schema == nullptr) return {};
  std::string name;
  if (g_settings_schema_has_key(schema, kKey)) {
    const GlibObject<GSettings> settings(g_settings_new_full(schema, nullptr, nullptr));
    const GlibText value(g_settings_get_string(settings.get(), kKey));
    if (value != nullptr) name = value.get();
  }
  g_settings_schema_unref(schema);
  return name;
}

std::string settingIn(const std::string& path, const char* group, const char* key) {
  const auto file = KeyFile::load(path, kMaxIndexBytes);
  return file ? file->text(group, key) : std::string();
}

std::string userTheme(const std::string& config) {
  std::string name = themeOfDesktop();
  if (name.empty()) {
    name = settingIn(config + "/gtk-3.0/settings.ini", "Settings", "gtk-icon-theme-name");
  }
  if (name.empty()) name = settingIn(config + "/kdeglobals", "Icons", "Theme");
  return name.empty() ? "Adwaita" : name;
}

/// How far a range of sizes is from what is wanted. Icons that must grow look worse than those
/// that shrink.
int distance(int smallest, int largest, int side) {
  constexpr int kGrowing = 4;
  if (largest < side) return (side - largest) * kGrowing;
  return std::max(smallest - side, 0);
}

std::string fileIn(const std::string& folder, const std::string& name) {
  for (const char* suffix : kSuffixes) {
    std::string path = below(folder, name);
    path += suffix;
    if (isFile(path)) return path;
  }
  return {};
}

}  // namespace

IconThemeLinux::IconThemeLinux(XdgFolders folders)
    : folders_(std::move(folders)), bases_(themeBases(folders_)) {}

void IconThemeLinux::load() {
  std::vector<std::string> names{userTheme(folders_.config)};
  // `names` grows while it is read: each theme adds those it inherits from.
  for (std::size_t i = 0; i < names.size() && i < kMaxThemes; ++i) {
    const std::string name = names[i];
    addTheme(name, names);
  }
  std::vector<std::string> last;
  addTheme(kFallbackTheme, last);
  loaded_ = true;
}

void IconThemeLinux::addTheme(const std::string& name, std::vector<std::string>& pending) {
  if (!plainName(name)) return;
  std::optional<KeyFile> index;
  for (const std::string& base : bases_) {
    if (!index) index = KeyFile::load(below(below(base, name), "index.theme"), kMaxIndexBytes);
  }
  if (!index) return;
  constexpr const char* kGroup = "Icon Theme";
  for (std::string& parent : index->list(kGroup, "Inherits", ',')) {
    const bool known = std::find(pending.begin(), pending.end(), parent) != pending.end();
    if (!known && parent != kFallbackTheme) pending.push_back(std::move(parent));
  }
  std::vector<std::string> names = index->list(kGroup, "Directories", ',');
  for (auto& scaled : index->list(kGroup, "ScaledDirectories", ',')) {
    names.push_back(std::move(scaled));
  }
  if (names.size() > kMaxFolders) names.resize(kMaxFolders);

  Theme theme;
  for (const std::string& folder : names) {
    const char* group = folder.c_str();
    const int size = index->integer(group, "Size", 0);
    const int scale = index->integer(group, "Scale", 1);
    const bool scalable = index->text(group, "Type") == "Scalable";
    const int smallest = scalable ? index->integer(group, "MinSize", size) : size;
    const int largest = scalable ? index->integer(group, "MaxSize", size) : size;
    if (smallest <= 0 || largest < smallest || largest > kMaxSide || scale <= 0 || scale > 8) {
      continue;
    }
    for (const std::string& base : bases_) {
      std::string path = below(below(base, name), folder);
      if (isFolder(path)) theme.push_back({std::move(path), smallest * scale, largest * scale});
    }
  }
  themes_.push_back(std::move(theme));
}

std::string IconThemeLinux::findIn(const Theme& theme, const std::string& name, int side) const {
  std::string best;
  int bestDistance = 0;
  for (const Folder& folder : theme) {
    const int here = distance(folder.smallest, folder.largest, side);
    if (!best.empty() && here >= bestDistance) continue;
    if (std::string path = fileIn(folder.path, name); !path.empty()) {
      best = std::move(path);
      bestDistance = here;
    }
  }
  return best;
}

std::string IconThemeLinux::find(std::string_view name, int side) {
  if (!plainName(name)) return {};
  for (const std::string_view suffix : kSuffixes) {
    if (name.ends_with(suffix)) name.remove_suffix(suffix.size());
  }
  const std::string stem(name);
  const std::lock_guard<std::mutex> hold(lock_);
  if (!loaded_) load();
  for (const Theme& theme : themes_) {
    if (std::string path = findIn(theme, stem, side); !path.empty()) return path;
  }
  for (const std::string& base : bases_) {
    if (std::string path = fileIn(base, stem); !path.empty()) return path;
  }
  for (const std::string& data : folders_.data) {
    if (std::string path = fileIn(data + "/pixmaps", stem); !path.empty()) return path;
  }
  return {};
}

}  // namespace pellak::native
