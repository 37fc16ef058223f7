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
#include "platform/posix/OwnFile.h"
#include "platform/posix/ReadToEnd.h"
#include "platform/posix/RoomAhead.h"

namespace pellak::posix {
namespace {

/// How long another process may hold the lock before a write gives up instead of hanging.
constexpr std::chrono::seconds kLockPatience{5};
constexpr std::chrono::milliseconds kLockPoll{10};
constexpr std::string_view kTemporary = ".nuovo";
constexpr std::string_view kBroken = ".guasto";
constexpr int kMaxBroken = 1000;

class HeldLock : public FileLock {
 public:
  explicit HeldLock(Descriptor file) : file_(std::move(file)) {}

 private:
  Descriptor file_;
};

Error lastError() { return errnoError(errno); }

/// For reading, links followed: settings and rules may be kept elsewhere.
Descriptor openForReading(const std::string& percorso) {
  for (;;) {
    const int number = ::open(percorso.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (number >= 0 || errno != EINTR) return Descriptor(number);
  }
}

template <class T>
Result<T> named(std::string_view percorso, Result<T> esito) {
  if (esito || !esito.error().percorso.empty()) return esito;
  Error errore = esito.error();
  errore.percorso = percorso;
  return errore;
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
    auto file = openOwn(temporaneo, O_RDWR | O_CREAT);
    if (!file) return file;
    if (const auto preso = takeLock(file->get(), kLockPatience); !preso) return preso.error();
    // While we waited its owner may have renamed it into place.
    if (!stillNamed(file->get(), temporaneo)) continue;
    if (::ftruncate(file->get(), 0) != 0) return lastError();
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

Result<void> replaceWhole(const std::string& percorso, std::span<const std::string_view> pezzi) {
  const std::string cartella = folderOf(percorso);
  if (auto fatta = makeFolders(cartella); !fatta) return fatta;
  const std::string temporaneo = percorso + std::string(kTemporary);
  const auto file = openTemporary(temporaneo);
  if (!file) return named<void>(temporaneo, file.error());
  if (auto fatto = fillAndRename(file->get(), temporaneo, percorso, pezzi); !fatto) {
    ::unlink(temporaneo.c_str());
    return fatto;
  }
  return syncFolder(cartella);
}

Result<Descriptor> openLog(const std::string& percorso) {
  if (auto fatta = makeFolders(folderOf(percorso)); !fatta) return fatta.error();
  return openOwn(percorso, O_WRONLY | O_CREAT | O_APPEND);
}

Result<std::unique_ptr<FileLock>> lockWithin(const std::string& percorso,
                                             std::chrono::milliseconds attesa) {
  if (auto fatta = makeFolders(folderOf(percorso)); !fatta) return fatta.error();
  auto file = openOwn(percorso, O_RDWR | O_CREAT);
  if (!file) return file.error();
  if (const auto preso = takeLock(file->get(), attesa); !preso) return preso.error();
  return std::unique_ptr<FileLock>(std::make_unique<HeldLock>(std::move(*file)));
}

}  // namespace

/// A write that may draw on the reserve; its error names the file.
template <class Scrivi>
auto FilesPosix::conRiserva(std::string_view percorso, Scrivi&& scrivi) {
  return named(percorso, riserva_ == nullptr ? scrivi() : riserva_->conRiserva(percorso, scrivi));
}

Result<std::string> FilesPosix::read(std::string_view percorso, std::size_t limite) {
  const auto file = openRegular(std::string(percorso));
  if (!file) return file.error();
  struct stat info {};
  if (::fstat(file->get(), &info) != 0) return lastError();
  const auto attesi = static_cast<std::size_t>(info.st_size);
  if (attesi > limite) return errnoError(EINVAL);
  std::string testo(attesi, '\0');
  std::size_t letti = 0;
  while (letti < testo.size()) {
    const ssize_t parte = ::read(file->get(), testo.data() + letti, testo.size() - letti);
    if (parte < 0 && errno != EINTR) return lastError();
    if (parte == 0) break;
    if (parte > 0) letti += static_cast<std::size_t>(parte);
  }
  testo.resize(letti);
  return testo;
}

Result<std::string> FilesPosix::readToEnd(std::string_view percorso, std::size_t massimo) {
  return posix::readToEnd(std::string(percorso), massimo);
}

Result<void> FilesPosix::replace(std::string_view percorso,
                                 std::span<const std::string_view> pezzi) {
  const std::string finale(percorso);
  auto fatto = conRiserva(percorso, [&] { return replaceWhole(finale, pezzi); });
  if (fatto && riserva_ != nullptr) riserva_->rifornisci();
  return fatto;
}

Result<void> FilesPosix::appendLine(std::string_view percorso, std::string_view riga) {
  const std::string nome(percorso);
  const auto file = conRiserva(percorso, [&] { return openLog(nome); });
  if (!file) return file.error();
  std::string intera(riga);
  intera += '\n';
  bool provata = false;
  auto scritta = conRiserva(percorso, [&] {
    // What is left of the first attempt stays on a line of its own.
    if (std::exchange(provata, true)) intera.insert(intera.begin(), '\n');
    return writeAll(file->get(), intera);
  });
  if (!scritta) return scritta;
  return conRiserva(percorso, [&] { return syncFile(file->get()); });
}

Result<void> FilesPosix::appendable(std::string_view percorso, std::size_t byte) {
  const std::string nome(percorso);
  return conRiserva(percorso, [&]() -> Result<void> {
    const auto file = openLog(nome);
    return file ? roomAhead(file->get(), static_cast<std::int64_t>(byte)) : file.error();
  });
}

Result<void> FilesPosix::makeFolder(std::string_view percorso) {
  return conRiserva(percorso, [&] { return makeFolders(percorso); });
}

Result<void> FilesPosix::removeOwn(std::string_view percorso) {
  if (::unlink(std::string(percorso).c_str()) == 0 || errno == ENOENT || errno == ENOTDIR) {
    return {};
  }
  return named<void>(percorso, lastError());
}

Result<void> FilesPosix::setAside(std::string_view percorso) {
  const std::string nome(percorso);
  for (int numero = 1; numero < kMaxBroken; ++numero) {
    std::string libero = nome;
    if (numero > 1) libero.append(".").append(std::to_string(numero));
    libero += kBroken;
    if (exists(libero)) continue;
    if (::rename(nome.c_str(), libero.c_str()) == 0) return {};
    return named<void>(percorso, lastError());
  }
  return named<void>(percorso, errnoError(EEXIST));
}

Result<void> FilesPosix::readable(std::string_view percorso) {
  // Not blocking: opening a FIFO must not wait for a writer.
  const Descriptor file = openForReading(std::string(percorso));
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
  const std::string nome(percorso);
  return conRiserva(percorso, [&] { return lockWithin(nome, kLockPatience); });
}

Result<std::unique_ptr<FileLock>> FilesPosix::tryLock(std::string_view percorso) {
  const std::string nome(percorso);
  return conRiserva(percorso, [&] { return lockWithin(nome, std::chrono::seconds(0)); });
}

}  // namespace pellak::posix
