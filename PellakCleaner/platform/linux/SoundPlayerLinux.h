#pragma once

#include "platform/ProcessLauncher.h"
#include "platform/SoundPlayer.h"

namespace pellak::native {

/// Plays the sound theme's file with the player that comes with the session's sound server. A
/// session without one, a remote shell for example, stays silent.
class SoundPlayerLinux final : public SoundPlayer {
 public:
  explicit SoundPlayerLinux(ProcessLauncher& launcher) : launcher_(launcher) {}

  void movedToTrash() override;

 private:
  ProcessLauncher& launcher_;
};

}  // namespace pellak::native
