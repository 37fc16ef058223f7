#include "platform/posix/ErrnoError.h"

#include <cerrno>
#include <system_error>

namespace pellak::posix {
namespace {

ErrorKind kindOf(int number) {
  switch (number) {
    case ENOENT:
    case ENOTDIR:
    case ESRCH:
      return ErrorKind::missing;
    case EPERM:
    case EACCES:
      return ErrorKind::denied;
    case EBUSY:
    case ETXTBSY:
      return ErrorKind::busy;
    case ENOSPC:
    case EDQUOT:
      return ErrorKind::full;
    case EEXIST:
    case ENOTEMPTY:
      return ErrorKind::exists;
    case EROFS:
      return ErrorKind::readOnly;
    case ECANCELED:
      return ErrorKind::cancelled;
    case EINVAL:
      return ErrorKind::invalid;
    default:
      return ErrorKind::failed;
  }
}

}  // namespace

Error errnoError(int number) {
  // Nothing of ours follows a link: the system's words would speak of too many of them.
  if (number == ELOOP) return {ErrorKind::failed, ELOOP, "è un collegamento simbolico"};
  return {kindOf(number), number, std::generic_category().message(number)};
}

}  // namespace pellak::posix
