#include "platform/linux/SoundPlayerLinux.h"

#include <array>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include "platform/linux/XdgFolders.h"

namespace pellak::native {
namespace {

constexpr const char* kSound = "/sounds/freedesktop/stereo/trash-empty.oga";

struct Server {
  const char* socket;  ///< below the session's folder
  const char* player;
};
constexpr std::array<Server, 2> kServers = {
    {{"/pipewire-0", "/usr/bin/pw-play"}, {"/pulse/native", "/usr/bin/paplay"}}};

bool isThere(const std::string& path) { return ::access(path.c_str(), R_OK) == 0; }

std::string soundFile() {
  for (const std::string& folder : xdgFolders().data) {
    if (isThere(folder + kSound)) return folder + kSound;
  }
  return {};
}

}  // namespace

void SoundPlayerLinux::movedToTrash() {
  const char* session = std::getenv("XDG_RUNTIME_DIR");
  if (session == nullptr || *session == '\0') return;
  const std::string sound = soundFile();
  if (sound.empty()) return;
  for (const Server& server : kServers) {
    if (!isThere(std::string(session) + server.socket)) continue;
    // The player goes on by itself when its object goes away.
    if (launcher_.start({server.player, {sound}, ChildStreams::errorOnly, {}})) return;
  }
}

}  // namespace pellak::native
