#pragma once

#include "platform/ProcessLauncher.h"
#include "platform/SoundPlayer.h"

namespace pellak::native {

/// Plays the file manager's own sound, in a process of its own: a command in a terminal has no run
/// loop to play it on, and ends before the sound does.
class SoundPlayerMac final : public SoundPlayer {
 public:
  explicit SoundPlayerMac(ProcessLauncher& launcher) : launcher_(launcher) {}

  void movedToTrash() override;

 private:
  ProcessLauncher& launcher_;
};

}  // namespace pellak::native
