#include <array>
#include <cstdlib>
#include <dlfcn.h>
#include <string>
#include <sys/stat.h>
#include <utility>

#include "platform/Desktop.h"
#include "platform/linux/KeepAwakeLinux.h"
#include "platform/linux/SingleInstance.h"
#include "platform/linux/WindowModule.h"

namespace pellak {
namespace {

using native::ConnectWindow;
using native::SingleInstance;

bool named(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool there(const std::string& file) {
  struct stat info {};
  return ::stat(file.c_str(), &info) == 0;
}

/// Beside the executable, as it is built, or where an installation puts it.
std::string moduleFile(const std::string& executable) {
  const std::string folder = executable.substr(0, executable.rfind('/') + 1);
  const std::string beside = folder + native::kWindowModule;
  const std::string installed = folder + native::kInstalledModules + "/" + native::kWindowModule;
  return there(beside) ? beside : installed;
}

/// Gives the module's entry. It is never unloaded: what it brings leaves threads and handlers
/// behind.
Result<void*> loadModule(const std::string& executable) {
  void* module = ::dlopen(moduleFile(executable).c_str(), RTLD_NOW | RTLD_LOCAL);
  void* entry = module == nullptr ? nullptr : ::dlsym(module, native::kWindowEntry);
  if (entry == nullptr) {
    const char* why = ::dlerror();
    return Error{ErrorKind::failed, 0, why == nullptr ? "no entry" : why};
  }
  return entry;
}

/// One word for a shell, whatever it holds.
std::string quoted(const std::string& text) {
  std::string word = "'";
  for (const char sign : text) word += sign == '\'' ? std::string("'\\''") : std::string(1, sign);
  return word + "'";
}

class DesktopLinux final : public Desktop {
 public:
  DesktopHost& host() override { return *host_; }
  KeepAwake& keepAwake() override { return keepAwake_; }
  std::string startCommand(const std::string& executable) const override {
    return "exec " + quoted(executable);
  }

  bool first() const { return istanza_.first(); }
  bool connect(void* entry) { return reinterpret_cast<ConnectWindow*>(entry)(istanza_, host_); }

 private:
  SingleInstance istanza_;
  native::KeepAwakeLinux keepAwake_;
  std::unique_ptr<DesktopHost> host_;
};

}  // namespace

Result<std::unique_ptr<Desktop>> openDesktop(const std::string& executable) {
  const Error noDisplay{ErrorKind::missing, 0, "no display"};
  if (!named("DISPLAY") && !named("WAYLAND_DISPLAY")) return noDisplay;
  auto desktop = std::make_unique<DesktopLinux>();
  if (!desktop->first()) return Error{ErrorKind::exists, 0, "already running"};
  const auto entry = loadModule(executable);
  if (!entry) return entry.error();
  if (!desktop->connect(*entry)) return noDisplay;
  return std::unique_ptr<Desktop>(std::move(desktop));
}

}  // namespace pellak
