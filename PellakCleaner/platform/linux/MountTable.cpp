#include "platform/linux/MountTable.h"

#include <cerrno>
#include <fcntl.h>
#include <poll.h>
#include <utility>

namespace pellak::native {

/// The table raises an exceptional condition once after each change since it was opened. Without
/// that the list counts as changed each time.
bool MountTable::changed() {
  if (!watch_) watch_ = posix::Descriptor(::open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC));
  if (!watch_) return true;
  pollfd domanda = {watch_.get(), POLLPRI, 0};
  return ::poll(&domanda, 1, 0) != 0;
}

Result<void> MountTable::nothingBelow(std::string_view cartella) {
  if (changed() || !known_) {
    known_.reset();
    auto letti = source_.list();
    if (!letti) {
      return Error{ErrorKind::failed, letti.error().code,
                   "non so quali dischi sono montati: cartella non spostata"};
    }
    known_ = std::move(*letti);
  }
  const Mount* sotto = mountBelow(*known_, cartella);
  if (sotto != nullptr) return Error{ErrorKind::mounted, EBUSY, sotto->path};
  return {};
}

}  // namespace pellak::native
