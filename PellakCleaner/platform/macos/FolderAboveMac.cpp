#include "platform/macos/FolderAboveMac.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/posix/ErrnoError.h"

namespace pellak::native {
namespace {

using posix::Descriptor;
using posix::errnoError;

constexpr int kFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC;
constexpr mode_t kOrdinary = 0777;

/// A link where none may be is a path that can't be meant.
Error openError(int number) { return errnoError(number == ELOOP ? EINVAL : number); }

bool isInside(std::string_view percorso, std::string_view cartella) {
  return percorso.starts_with(cartella) &&
         (percorso.size() == cartella.size() || percorso[cartella.size()] == '/');
}

bool hasDots(std::string_view percorso) {
  const std::string intero = std::string(percorso) + "/";
  return intero.find("/./") != std::string::npos || intero.find("/../") != std::string::npos;
}

Result<Descriptor> makeWay(Descriptor qui, std::string_view resto) {
  while (!resto.empty()) {
    const std::size_t barra = resto.find('/');
    const std::string nome(resto.substr(0, barra));
    resto.remove_prefix(barra == std::string_view::npos ? resto.size() : barra + 1);
    if (nome.empty()) continue;
    Descriptor sotto(::openat(qui.get(), nome.c_str(), kFolder | O_NOFOLLOW));
    if (!sotto && errno == ENOENT && ::mkdirat(qui.get(), nome.c_str(), kOrdinary) == 0) {
      sotto = Descriptor(::openat(qui.get(), nome.c_str(), kFolder | O_NOFOLLOW));
    }
    if (!sotto) return openError(errno);
    qui = std::move(sotto);
  }
  return qui;
}

bool isThere(const FolderAbove& voce) {
  struct stat info {};
  return ::fstatat(voce.folder.get(), voce.name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0;
}

}  // namespace

Result<FolderAbove> openFolderAbove(std::string_view percorso, const std::string& home, bool make) {
  const std::size_t barra = percorso.rfind('/');
  const bool senzaNome = barra == std::string_view::npos || barra + 1 == percorso.size();
  if (senzaNome || !percorso.starts_with('/') || hasDots(percorso) ||
      percorso.find('\0') != std::string_view::npos) {
    return errnoError(EINVAL);
  }
  const std::string_view cartella = percorso.substr(0, barra);
  const bool inHome = home.size() > 1 && isInside(cartella, home);
  Descriptor base(::open(inHome ? home.c_str() : "/", kFolder));
  if (!base) return errnoError(errno);
  std::string_view sotto = cartella.substr(inHome ? home.size() : 0);
  while (sotto.starts_with('/')) sotto.remove_prefix(1);
  FolderAbove sopra{Descriptor(), std::string(percorso.substr(barra + 1))};
  if (make) {
    auto fatta = makeWay(std::move(base), sotto);
    if (!fatta) return fatta.error();
    sopra.folder = std::move(*fatta);
  } else {
    const std::string nome = sotto.empty() ? "." : std::string(sotto);
    sopra.folder = Descriptor(::openat(base.get(), nome.c_str(), kFolder | O_NOFOLLOW_ANY));
    if (!sopra.folder) return openError(errno);
  }
  return sopra;
}

Error otherVolume() {
  return {ErrorKind::failed, EXDEV,
          "il Cestino e' su un altro volume e una copia non sarebbe sicura: elemento non spostato"};
}

Result<void> renameExclusively(const FolderAbove& da, const FolderAbove& a) {
  const int qui = da.folder.get();
  const int altrove = a.folder.get();
  if (::renameatx_np(qui, da.name.c_str(), altrove, a.name.c_str(), RENAME_EXCL) == 0) return {};
  if (errno == ENOTSUP || errno == EINVAL) {
    if (isThere(a)) return errnoError(EEXIST);
    if (::renameat(qui, da.name.c_str(), altrove, a.name.c_str()) == 0) return {};
  }
  if (errno == EXDEV) return otherVolume();
  return errnoError(errno);
}

}  // namespace pellak::native
