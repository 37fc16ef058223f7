#include "platform/posix/FilesPosix.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/posix/Descriptor.h"
#include "platform/posix/ErrnoError.h"
#include "platform/posix/SyncToDisk.h"

namespace pellak::posix {
namespace {

constexpr mode_t kOwnFile = 0600;
constexpr mode_t kFolder = 0777;
/// How long another process may hold the lock before a write gives up instead of hanging.
constexpr std::chrono::seconds kLockPatience{5};
constexpr std::chrono::milliseconds kLockPoll{10};
constexpr std::string_view kTemporary = ".nuovo";

class HeldLock : public FileLock {
 public:
  explicit HeldLock(Descriptor file) : file_(std::move(file)) {}

 private:
  Descriptor file_;
};

Error lastError() { return errnoError(errno); }

Descriptor openFile(const std::string& percorso, int flags) {
  for (;;) {
    const int number = ::open(percorso.c_str(), flags | O_CLOEXEC, kOwnFile);
    if (number >= 0 || errno != EINTR) return Descriptor(number);
  }
}

std::string parentOf(std::string_view percorso) {
  const std::size_t barra = percorso.rfind('/');
  if (barra == std::string_view::npos) return ".";
  return barra == 0 ? "/" : std::string(percorso.substr(0, barra));
}

Result<void> writeAll(int file, std::string_view testo) {
  while (!testo.empty()) {
    const ssize_t scritti = ::write(file, testo.data(), testo.size());
    if (scritti < 0 && errno != EINTR) return lastError();
    if (scritti > 0) testo.remove_prefix(static_cast<std::size_t>(scritti));
  }
  return {};
}

Result<void> syncFile(int file) {
  while (syncToDisk(file) != 0) {
    if (errno == EINTR) continue;
    // Some file systems can't sync; that is no reason to lose the write.
    if (errno == EINVAL || errno == ENOTSUP) return {};
    return lastError();
  }
  return {};
}

Result<void> syncFolder(const std::string& cartella) {
  const Descriptor aperta = openFile(cartella, O_RDONLY | O_DIRECTORY);
  if (!aperta) return lastError();
  return syncFile(aperta.get());
}

Result<void> takeLock(int file, std::chrono::milliseconds attesa) {
  const auto limite = std::chrono::steady_clock::now() + attesa;
  while (::flock(file, LOCK_EX | LOCK_NB) != 0) {
    // A file system without locks must not keep anything from being saved.
    if (errno == ENOLCK || errno == ENOTSUP || errno == ENOSYS) return {};
    if (errno != EWOULDBLOCK && errno != EINTR) return lastError();
    if (std::chrono::steady_clock::now() > limite) return errnoError(EBUSY);
    std::this_thread::sleep_for(kLockPoll);
  }
  return {};
}

bool stillNamed(int file, const std::string& percorso) {
  struct stat aperto {};
  struct stat nominato {};
  return ::fstat(file, &aperto) == 0 && ::lstat(percorso.c_str(), &nominato) == 0 &&
         aperto.st_ino == nominato.st_ino && aperto.st_dev == nominato.st_dev;
}

/// The one temporary file of a target, empty and locked: a process that was killed while writing
/// leaves at most this one behind, and the next write takes it over.
Result<Descriptor> openTemporary(const std::string& temporaneo) {
  for (;;) {
    Descriptor file = openFile(temporaneo, O_RDWR | O_CREAT | O_NOFOLLOW);
    if (!file) return lastError();
    if (const auto preso = takeLock(file.get(), kLockPatience); !preso) return preso.error();
    // While we waited its owner may have renamed it into place.
    if (!stillNamed(file.get(), temporaneo)) continue;
    if (::ftruncate(file.get(), 0) != 0) return lastError();
    return file;
  }
}

Result<void> fillAndRename(int file, const std::string& temporaneo, const std::string& percorso,
                           std::span<const std::string_view> pezzi) {
  for (const std::string_view pezzo : pezzi) {
    if (auto scritto = writeAll(file, pezzo); !scritto) return scritto;
  }
  if (auto sincrono = syncFile(file); !sincrono) return sincrono;
  if (::rename(temporaneo.c_str(), percorso.c_str()) != 0) return lastError();
  return {};
}

Result<void> makeFolders(std::string_view percorso) {
  const std::string cartella(percorso);
  if (::mkdir(cartella.c_str(), kFolder) == 0) return {};
  if (errno == ENOENT && cartella.find('/', 1) != std::string::npos) {
    if (auto sopra = makeFolders(parentOf(cartella)); !sopra) return sopra;
    if (::mkdir(cartella.c_str(), kFolder) == 0) return {};
  }
  const int perche = errno;
  struct stat info {};
  if (::stat(cartella.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) return {};
  return errnoError(perche);
}

Result<std::unique_ptr<FileLock>> lockWithin(std::string_view percorso,
                                             std::chrono::milliseconds attesa) {
  if (auto fatta = makeFolders(parentOf(percorso)); !fatta) return fatta.error();
  Descriptor file = openFile(std::string(percorso), O_RDWR | O_CREAT | O_NOFOLLOW);
  if (!file) return lastError();
  if (const auto preso = takeLock(file.get(), attesa); !preso) return preso.error();
  return std::unique_ptr<FileLock>(std::make_unique<HeldLock>(std::move(file)));
}

}  // namespace

Result<std::string> FilesPosix::read(std::string_view percorso, std::size_t limite) {
  const Descriptor file = openFile(std::string(percorso), O_RDONLY | O_NONBLOCK);
  if (!file) return lastError();
  struct stat info {};
  if (::fstat(file.get(), &info) != 0) return lastError();
  const auto attesi = static_cast<std::size_t>(info.st_size);
  if (!S_ISREG(info.st_mode) || attesi > limite) return errnoError(EINVAL);
  std::string testo(attesi, '\0');
  std::size_t letti = 0;
  while (letti < testo.size()) {
    const ssize_t parte = ::read(file.get(), testo.data() + letti, testo.size() - letti);
    if (parte < 0 && errno != EINTR) return lastError();
    if (parte == 0) break;
    if (parte > 0) letti += static_cast<std::size_t>(parte);
  }
  testo.resize(letti);
  return testo;
}

Result<void> FilesPosix::replace(std::string_view percorso,
                                 std::span<const std::string_view> pezzi) {
  const std::string cartella = parentOf(percorso);
  if (auto fatta = makeFolder(cartella); !fatta) return fatta;
  const std::string finale(percorso);
  const std::string temporaneo = finale + std::string(kTemporary);
  const auto file = openTemporary(temporaneo);
  if (!file) return file.error();
  if (auto fatto = fillAndRename(file->get(), temporaneo, finale, pezzi); !fatto) {
    ::unlink(temporaneo.c_str());
    return fatto;
  }
  return syncFolder(cartella);
}

Result<void> FilesPosix::appendLine(std::string_view percorso, std::string_view riga) {
  if (auto fatta = makeFolder(parentOf(percorso)); !fatta) return fatta;
  const Descriptor file =
      openFile(std::string(percorso), O_WRONLY | O_CREAT | O_APPEND | O_NOFOLLOW);
  if (!file) return lastError();
  std::string intera(riga);
  intera += '\n';
  if (auto scritta = writeAll(file.get(), intera); !scritta) return scritta;
  return syncFile(file.get());
}

Result<void> FilesPosix::makeFolder(std::string_view percorso) { return makeFolders(percorso); }

Result<void> FilesPosix::removeOwn(std::string_view percorso) {
  if (::unlink(std::string(percorso).c_str()) == 0 || errno == ENOENT || errno == ENOTDIR) {
    return {};
  }
  return lastError();
}

Result<void> FilesPosix::renameOwn(std::string_view da, std::string_view a) {
  if (::rename(std::string(da).c_str(), std::string(a).c_str()) != 0) return lastError();
  return {};
}

Result<void> FilesPosix::readable(std::string_view percorso) {
  // Not blocking: opening a FIFO must not wait for a writer.
  const Descriptor file = openFile(std::string(percorso), O_RDONLY | O_NONBLOCK | O_NOCTTY);
  if (!file) return lastError();
  struct stat info {};
  if (::fstat(file.get(), &info) != 0) return lastError();
  if (!S_ISDIR(info.st_mode)) return {};
  const std::unique_ptr<DIR, int (*)(DIR*)> elenco(::opendir(std::string(percorso).c_str()),
                                                   ::closedir);
  if (elenco == nullptr) return lastError();
  errno = 0;
  if (::readdir(elenco.get()) == nullptr && errno != 0) return lastError();
  return {};
}

std::string FilesPosix::stamp(std::string_view percorso) {
  struct stat info {};
  if (::stat(std::string(percorso).c_str(), &info) != 0) return {};
  std::error_code ignorato;
  const auto scritto = std::filesystem::last_write_time(percorso, ignorato).time_since_epoch();
  // The library's own count may be wider than any number that can be printed.
  const auto quando = std::chrono::duration_cast<std::chrono::nanoseconds>(scritto).count();
  return std::to_string(info.st_dev) + ":" + std::to_string(info.st_ino) + ":" +
         std::to_string(info.st_size) + ":" + std::to_string(quando);
}

bool FilesPosix::exists(std::string_view percorso) {
  struct stat info {};
  return ::lstat(std::string(percorso).c_str(), &info) == 0;
}

Result<std::unique_ptr<FileLock>> FilesPosix::lock(std::string_view percorso) {
  return lockWithin(percorso, kLockPatience);
}

Result<std::unique_ptr<FileLock>> FilesPosix::tryLock(std::string_view percorso) {
  return lockWithin(percorso, std::chrono::seconds(0));
}

}  // namespace pellak::posix
