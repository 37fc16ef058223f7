#include "platform/linux/SyncAhead.h"

#include <cerrno>
#include <chrono>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/posix/ErrnoError.h"

namespace pellak::native {

void SyncAhead::begin() {
  if (underWay_.valid() &&
      underWay_.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
    return;
  }
  collect();
  try {
    underWay_ = std::async(std::launch::async, [file = cestino_.files.get()] {
      return ::syncfs(file) == 0 ? 0 : errno;
    });
  } catch (const std::system_error&) {
    // The commit at the end does it all.
  }
}

Result<void> SyncAhead::finish() {
  collect();
  const int failure = std::exchange(failure_, 0);
  if (failure != 0) return posix::errnoError(failure);
  return {};
}

/// The system tells a failed write only once: the commit at the end would know nothing of it.
void SyncAhead::collect() {
  if (!underWay_.valid()) return;
  const int failure = underWay_.get();
  if (failure != 0) failure_ = failure;
}

}  // namespace pellak::native
