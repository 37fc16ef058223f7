#include "platform/linux/ItemMove.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

#include "platform/posix/ErrnoError.h"
#include "platform/posix/RecordTimes.h"

namespace pellak::native {
namespace {

/// A folder is the same whatever was written in it.
bool writtenSince(const struct stat& info, const TrashPlan& piano) {
  return !S_ISDIR(info.st_mode) &&
         (posix::timesOf(info).modified != piano.mtimeNs || info.st_size != piano.lunghezza);
}

}  // namespace

using posix::Descriptor;
using posix::errnoError;

bool existsAt(int cartella, const std::string& nome) {
  struct stat info {};
  return ::fstatat(cartella, nome.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0;
}

bool isItem(int cartella, const std::string& nome, const TrashPlan& piano) {
  struct stat info {};
  return ::fstatat(cartella, nome.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
         info.st_dev == piano.dev && info.st_ino == piano.ino;
}

Result<void> renameExclusively(int da, const std::string& nome, int a, const std::string& nuovo) {
  if (::renameat2(da, nome.c_str(), a, nuovo.c_str(), RENAME_NOREPLACE) == 0) return {};
  if (errno == EINVAL || errno == ENOSYS || errno == ENOTSUP) {
    if (existsAt(a, nuovo)) return errnoError(EEXIST);
    if (::renameat(da, nome.c_str(), a, nuovo.c_str()) == 0) return {};
  }
  if (errno == EXDEV) {
    return Error{ErrorKind::failed, EXDEV,
                 "il sistema potrebbe solo copiarlo nel Cestino: elemento non spostato"};
  }
  return errnoError(errno);
}

Result<Look> lookAgain(int cartella, const std::string& nome, const TrashPlan& piano,
                       bool overlay) {
  Look look;
  if (overlay) {
    look.held = Descriptor(::openat(cartella, nome.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!look.held) return errnoError(errno);
  }
  struct stat info {};
  const int letto = overlay ? ::fstat(look.held.get(), &info)
                            : ::fstatat(cartella, nome.c_str(), &info, AT_SYMLINK_NOFOLLOW);
  if (letto != 0) return errnoError(errno);
  if (info.st_dev != piano.dev || info.st_ino != piano.ino) return errnoError(EINVAL);
  if (piano.type != EntryType::unknown && writtenSince(info, piano)) return errnoError(EINVAL);
  look.directory = S_ISDIR(info.st_mode);
  return look;
}

bool arrived(int files, const std::string& nome, const TrashPlan& piano, const Look& look) {
  struct stat info {};
  if (!look.held) return isItem(files, nome, piano);
  TrashPlan ora;
  if (::fstat(look.held.get(), &info) != 0) return false;
  ora.dev = info.st_dev;
  ora.ino = info.st_ino;
  return isItem(files, nome, ora);
}

}  // namespace pellak::native
