#include "platform/linux/ApplicationsLinux.h"

#include <chrono>
#include <csignal>
#include <thread>
#include <utility>
#include <vector>

#include "platform/linux/DesktopEntries.h"
#include "platform/linux/IconImage.h"
#include "platform/linux/IconThemeLinux.h"
#include "platform/linux/RunningPrograms.h"
#include "platform/linux/XdgFolders.h"

namespace pellak::native {
namespace {

constexpr int kIconSide = 64;
constexpr std::chrono::seconds kQuitPatience{5};
constexpr std::chrono::milliseconds kQuitPoll{100};

}  // namespace

struct ApplicationsLinux::Installed {
  explicit Installed(const XdgFolders& folders)
      : entries(DesktopEntries::read(folders.data)), icons(folders) {}

  const DesktopEntries entries;
  IconThemeLinux icons;
};

ApplicationsLinux::ApplicationsLinux() = default;
ApplicationsLinux::~ApplicationsLinux() = default;

std::shared_ptr<ApplicationsLinux::Installed> ApplicationsLinux::installed() {
  const std::lock_guard<std::mutex> hold(lock_);
  if (installed_ == nullptr || !installed_->entries.current()) {
    installed_ = std::make_shared<Installed>(xdgFolders());
  }
  return installed_;
}

std::optional<ApplicationInfo> ApplicationsLinux::find(std::string_view chiave) {
  const auto now = installed();
  const DesktopEntry* entry = now->entries.find(chiave);
  if (entry == nullptr) return std::nullopt;
  return entry->info;
}

std::vector<int> ApplicationsLinux::processesOf(const ApplicationInfo& app) {
  const auto now = installed();
  const DesktopEntry* known = now->entries.find(app.id);
  DesktopEntry stranger;
  stranger.info = app;
  const DesktopEntry& entry = known != nullptr ? *known : stranger;
  std::vector<int> found;
  for (const RunningProgram& process : runningPrograms()) {
    if (belongsTo(process, entry)) found.push_back(process.pid);
  }
  return found;
}

bool ApplicationsLinux::running(const ApplicationInfo& app) { return !processesOf(app).empty(); }

bool ApplicationsLinux::quit(const ApplicationInfo& app) {
  for (const int process : processesOf(app)) ::kill(process, SIGTERM);
  const auto limit = std::chrono::steady_clock::now() + kQuitPatience;
  while (running(app)) {
    if (std::chrono::steady_clock::now() > limit) return false;
    std::this_thread::sleep_for(kQuitPoll);
  }
  return true;
}

Result<std::string> ApplicationsLinux::iconPng(std::string_view chiave) {
  const auto now = installed();
  const DesktopEntry* entry = now->entries.find(chiave);
  const std::string icon = entry != nullptr ? entry->icon : std::string();
  const std::string path = icon.starts_with('/') ? icon : now->icons.find(icon, kIconSide);
  if (path.empty()) return Error{ErrorKind::missing, 0, "no icon"};
  return iconImagePng(path, kIconSide);
}

}  // namespace pellak::native
