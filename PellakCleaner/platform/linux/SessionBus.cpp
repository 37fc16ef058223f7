#include "platform/linux/SessionBus.h"

#include <cstdlib>
#include <sys/stat.h>

namespace pellak::native {

std::string sessionBusAddress() {
  if (const char* address = std::getenv("DBUS_SESSION_BUS_ADDRESS");
      address != nullptr && *address != '\0') {
    const std::string text(address);
    return text.find("autolaunch:") == std::string::npos ? text : std::string();
  }
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  if (runtime == nullptr || *runtime != '/') return {};
  const std::string socket = std::string(runtime) + "/bus";
  struct stat info {};
  if (::stat(socket.c_str(), &info) != 0 || !S_ISSOCK(info.st_mode)) return {};
  return "unix:path=" + socket;
}

}  // namespace pellak::native
