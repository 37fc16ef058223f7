#include "platform/linux/TrashAway.h"

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <utility>

#include "platform/linux/MoveCauses.h"
#include "platform/linux/TrashRecord.h"
#include "platform/posix/ErrnoError.h"
#include "platform/posix/PathParts.h"

namespace pellak::native {
namespace {

using posix::errnoError;
using posix::folderOf;

std::string named(const std::string& percorso) { return "«" + percorso + "»"; }

Error because(Error errore, std::string causa) {
  errore.causa = std::move(causa);
  return errore;
}

Error closed(Error errore, const std::string& cestino) {
  if (!errore.causa.empty()) return errore;
  if (errore.code == ELOOP) {
    return because(std::move(errore),
                   "il Cestino " + named(cestino) + " sta oltre un collegamento simbolico");
  }
  if (errore.kind == ErrorKind::denied || errore.kind == ErrorKind::missing) {
    return because(std::move(errore), "il Cestino " + named(cestino) + " non si può aprire");
  }
  return trashRefuses(std::move(errore), cestino, cestino);
}

/// Device of the nearest folder above that exists.
std::uint64_t deviceAbove(std::string percorso) {
  struct stat info {};
  while (::stat(percorso.c_str(), &info) != 0 && percorso != "/") percorso = folderOf(percorso);
  return info.st_dev;
}

}  // namespace

Result<void> lookIn(const TrashFolder& cestino, const TrashPlan& piano) {
  const std::string nome = piano.nelCestino.substr(piano.nelCestino.rfind('/') + 1);
  struct stat info {};
  if (::fstatat(cestino.files.get(), nome.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
    if (errno == ENOENT) return {};
    return closed(errnoError(errno), folderOf(piano.nelCestino));
  }
  if (!cestino.info) return {};
  const posix::Descriptor scheda(::openat(cestino.info.get(), recordName(nome).c_str(),
                                          O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
  // A link is no record, and an item may have lost its own.
  if (scheda || errno == ENOENT || errno == ELOOP) return {};
  return closed(errnoError(errno), cestino.percorso + "/info");
}

Result<void> surelyGone(const TrashPlan& piano, const Error& perche) {
  const std::string cestino = folderOf(folderOf(piano.nelCestino));
  const std::string cima = topOfTrash(cestino);
  struct stat info {};
  const bool visto = ::lstat(piano.nelCestino.c_str(), &info) == 0;
  if (perche.code == EINVAL) {
    if (cima.empty()) {
      // The folder of the user's data may be another one than it was.
      if (!visto || !cestino.ends_with("/Trash")) return {};
      return because(perche, "sta in " + named(cestino) + ", che non è più il Cestino in uso");
    }
    // No volume begins there: what looks like a Trash in an ordinary folder is none.
    if (visto) return {};
    return because(perche, "il disco " + named(cima) + " non è collegato");
  }
  if (perche.code != ENOENT || visto) return closed(perche, cestino);
  if (cima.empty()) {
    if (piano.dev == 0 || deviceAbove(cestino) == piano.dev) return {};
    return because(perche, "il disco del Cestino " + named(cestino) + " non è collegato");
  }
  if (::stat(cima.c_str(), &info) != 0) {
    return because(perche, "il disco " + named(cima) + " non è collegato");
  }
  if (info.st_dev == piano.dev) return {};
  return because(perche, "il disco " + named(cima) +
                             " non ha quel Cestino: è un altro disco, o il Cestino è stato tolto");
}

}  // namespace pellak::native
