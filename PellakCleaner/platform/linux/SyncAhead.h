#pragma once

#include <future>

#include "platform/Result.h"
#include "platform/linux/TrashFolder.h"

namespace pellak::native {

/// Commits a Trash's volume in the background while a batch still moves items into it, so that the
/// commit at the batch's end has little left to do. It promises nothing by itself: only a commit
/// after the last move does. One user thread; the folder outlives it.
class SyncAhead {
 public:
  explicit SyncAhead(const TrashFolder& cestino) : cestino_(cestino) {}

  /// Begins a commit, unless one is under way or the system gives no thread.
  void begin();

  /// Waits for what was begun. Errors: failed when a commit did, told once.
  Result<void> finish();

 private:
  void collect();

  const TrashFolder& cestino_;
  int failure_ = 0;            ///< error number of a commit
  std::future<int> underWay_;  ///< waits for its thread when it goes
};

}  // namespace pellak::native
