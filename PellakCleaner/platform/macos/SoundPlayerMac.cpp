#include "platform/macos/SoundPlayerMac.h"

namespace pellak::native {
namespace {

constexpr const char* kPlayer = "/usr/bin/afplay";
constexpr const char* kSound =
    "/System/Library/Components/CoreAudio.component/Contents/SharedSupport/SystemSounds/finder/"
    "move to trash.aif";

}  // namespace

void SoundPlayerMac::movedToTrash() {
  // The player goes on by itself when its object goes away.
  static_cast<void>(launcher_.start({kPlayer, {kSound}, ChildStreams::errorOnly, {}}));
}

}  // namespace pellak::native
