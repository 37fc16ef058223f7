#pragma once

namespace pellak {

/// The system's own short sounds. Any thread.
class SoundPlayer {
 public:
  virtual ~SoundPlayer() = default;

  /// The sound of something going to the Trash. Returns at once; silent where there is no such
  /// sound or nothing to play it with.
  virtual void movedToTrash() = 0;
};

}  // namespace pellak
