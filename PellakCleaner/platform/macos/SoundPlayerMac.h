#pragma once

#include "platform/SoundPlayer.h"

namespace pellak::native {

/// Plays the file manager's own sound.
class SoundPlayerMac final : public SoundPlayer {
 public:
  void movedToTrash() override;
};

}  // namespace pellak::native
