#include "platform/posix/OwnFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/ErrnoError.h"
#include "platform/posix/SyncToDisk.h"

namespace pellak::posix {
namespace {

constexpr mode_t kOwnFile = 0600;
constexpr int kFolderFlags = O_RDONLY | O_DIRECTORY | O_CLOEXEC;

Error noFile(mode_t modo) {
  if (S_ISLNK(modo)) return errnoError(ELOOP);
  return {ErrorKind::invalid, EINVAL, "non è un file normale", {}};
}

/// Folders are made where a folder's owner may swap them: only the one that was made is given.
void giveFolder(const std::string& cartella) {
  if (::geteuid() != 0) return;
  const Descriptor sopra(::open(folderOf(cartella).c_str(), kFolderFlags));
  const Descriptor fatta(::open(cartella.c_str(), kFolderFlags | O_NOFOLLOW));
  if (sopra && fatta) giveToOwner(fatta.get(), sopra.get());
}

}  // namespace

void giveToOwner(int file, int cartella) {
  if (::geteuid() != 0) return;
  struct stat suo {};
  struct stat sopra {};
  if (::fstat(file, &suo) != 0 || ::fstat(cartella, &sopra) != 0) return;
  // A second name could be a file of root's that somebody linked here.
  const bool unico = S_ISDIR(suo.st_mode) || suo.st_nlink == 1;
  if (suo.st_uid != 0 || sopra.st_uid == 0 || !unico) return;
  // Without effect the file stays root's, and who can't write it is told which one it is.
  static_cast<void>(::fchown(file, sopra.st_uid, sopra.st_gid) == 0);
}

Result<Descriptor> openOwnAt(int cartella, const std::string& nome, int flags) {
  struct stat info {};
  // To open a device, or a pipe, is to do something with it.
  if (::fstatat(cartella, nome.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0 &&
      !S_ISREG(info.st_mode)) {
    return noFile(info.st_mode);
  }
  Descriptor file;
  do {
    file = Descriptor(::openat(cartella, nome.c_str(),
                               flags | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, kOwnFile));
  } while (!file && errno == EINTR);
  if (!file) return errnoError(errno);
  if (::fstat(file.get(), &info) != 0) return errnoError(errno);
  if (!S_ISREG(info.st_mode)) return noFile(info.st_mode);
  if ((flags & O_CREAT) != 0) giveToOwner(file.get(), cartella);
  return file;
}

Result<Descriptor> openOwn(const std::string& percorso, int flags) {
  const Descriptor cartella(::open(folderOf(percorso).c_str(), kFolderFlags));
  if (!cartella) return errnoError(errno);
  return openOwnAt(cartella.get(), std::string(nameOf(percorso)), flags);
}

Result<void> writeAll(int file, std::string_view testo) {
  while (!testo.empty()) {
    const ssize_t scritti = ::write(file, testo.data(), testo.size());
    if (scritti < 0 && errno != EINTR) return errnoError(errno);
    if (scritti > 0) testo.remove_prefix(static_cast<std::size_t>(scritti));
  }
  return {};
}

Result<void> syncFile(int file) {
  while (syncToDisk(file) != 0) {
    if (errno == EINTR) continue;
    // Some file systems can't sync; that is no reason to lose the write.
    if (errno == EINVAL || errno == ENOTSUP) return {};
    return errnoError(errno);
  }
  return {};
}

Result<void> syncFolder(const std::string& cartella) {
  const Descriptor aperta(::open(cartella.c_str(), kFolderFlags));
  if (!aperta) return errnoError(errno);
  return syncFile(aperta.get());
}

Result<void> makeFolders(std::string_view percorso, mode_t modo) {
  const std::string cartella(percorso);
  const auto fatta = [&] {
    if (::mkdir(cartella.c_str(), modo) != 0) return false;
    giveFolder(cartella);
    return true;
  };
  if (fatta()) return {};
  if (errno == ENOENT && cartella.find('/', 1) != std::string::npos) {
    if (auto sopra = makeFolders(folderOf(cartella), modo); !sopra) return sopra;
    if (fatta()) return {};
  }
  const int perche = errno;
  struct stat info {};
  if (::stat(cartella.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) return {};
  return errnoError(perche);
}

}  // namespace pellak::posix
