#include "platform/posix/Riserva.h"

#include <algorithm>
#include <cstdint>
#include <fcntl.h>
#include <optional>
#include <random>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <utility>

#include "platform/posix/OwnFile.h"

namespace pellak::posix {
namespace {

constexpr std::uint64_t kMinBytes = std::uint64_t{1} << 20U;
constexpr std::uint64_t kMaxBytes = std::uint64_t{4} << 20U;
/// The part of the room that may be set aside: so much stays that giving the reserve up is never
/// what makes room for the next one.
constexpr std::uint64_t kShare = 8;
constexpr int kFiles = 64;
constexpr std::uint64_t kFilesLeft = 256;
constexpr const char* kSpace = "spazio";
constexpr const char* kNames = "nodi";
constexpr int kFolder = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;

std::string fileName(int numero) { return std::to_string(numero); }

/// Of the nearest folder there is.
std::optional<dev_t> deviceOf(std::string cartella) {
  for (;;) {
    struct stat info {};
    if (::stat(cartella.c_str(), &info) == 0) return info.st_dev;
    if (cartella == "/" || cartella == ".") return {};
    cartella = folderOf(cartella);
  }
}

bool hasSpace(int cartella) {
  struct stat info {};
  return ::fstatat(cartella, kSpace, &info, AT_SYMLINK_NOFOLLOW) == 0 &&
         static_cast<std::uint64_t>(info.st_size) >= kMinBytes;
}

/// The last one is made last and given up first.
bool hasFiles(int nomi) {
  struct stat info {};
  return ::fstatat(nomi, fileName(kFiles - 1).c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0;
}

/// Bytes that no file system can store in fewer, nor share with those of another home.
std::string incompressible(std::uint64_t quanti) {
  std::mt19937_64 caso(std::random_device{}());
  std::string testo;
  testo.reserve(quanti);
  while (testo.size() < quanti) {
    const std::uint64_t otto = caso();
    testo.append(reinterpret_cast<const char*>(&otto), sizeof otto);
  }
  return testo;
}

bool makeSpace(int cartella, std::uint64_t libero) {
  const std::uint64_t quanti = std::min(libero / kShare, kMaxBytes);
  const auto file = openOwnAt(cartella, kSpace, O_WRONLY | O_CREAT);
  if (!file) return false;
  if (writeAll(file->get(), incompressible(quanti)) && syncFile(file->get())) return true;
  ::unlinkat(cartella, kSpace, 0);
  return false;
}

bool makeFiles(int nomi) {
  for (int i = 0; i < kFiles; ++i) {
    if (!openOwnAt(nomi, fileName(i), O_WRONLY | O_CREAT)) return false;
  }
  return true;
}

Descriptor folderAt(int sopra, const char* nome) {
  const bool fatta = ::mkdirat(sopra, nome, 0700) == 0;
  Descriptor cartella(::openat(sopra, nome, kFolder));
  if (fatta && cartella) giveToOwner(cartella.get(), sopra);
  return cartella;
}

}  // namespace

void Riserva::usa(std::string cartella) {
  const std::lock_guard<std::mutex> hold(lock_);
  cartella_ = std::move(cartella);
}

void Riserva::rifornisci() {
  const std::lock_guard<std::mutex> hold(lock_);
  if (completa_ || cartella_.empty()) return;
  const Descriptor sopra(::open(folderOf(cartella_).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  struct statvfs volume {};
  if (!sopra || ::fstatvfs(sopra.get(), &volume) != 0) return;
  const std::uint64_t libero = std::uint64_t{volume.f_bavail} * volume.f_frsize;
  // Where the number of files has no limit the system says none.
  const bool abbastanza = volume.f_files == 0 || volume.f_favail >= kFilesLeft;
  if (libero / kShare < kMinBytes || !abbastanza) return;
  const Descriptor cartella = folderAt(sopra.get(), std::string(nameOf(cartella_)).c_str());
  if (!cartella) return;
  const Descriptor nomi = folderAt(cartella.get(), kNames);
  if (!nomi) return;
  completa_ = (hasSpace(cartella.get()) || makeSpace(cartella.get(), libero)) &&
              (hasFiles(nomi.get()) || makeFiles(nomi.get()));
  if (completa_) ceduta_ = false;
}

/// Whether another attempt is worth it: what another thread just gave up serves this one too.
bool Riserva::cedi(std::string_view dove) {
  const std::lock_guard<std::mutex> hold(lock_);
  if (cartella_.empty()) return false;
  const auto suo = deviceOf(cartella_);
  if (!suo || suo != deviceOf(std::string(dove))) return false;
  completa_ = false;
  if (ceduta_) return true;
  const Descriptor cartella(::open(cartella_.c_str(), kFolder));
  if (!cartella) return false;
  ceduta_ = ::unlinkat(cartella.get(), kSpace, 0) == 0;
  const Descriptor nomi(::openat(cartella.get(), kNames, kFolder));
  for (int i = kFiles; nomi && i-- > 0;) {
    ceduta_ = ::unlinkat(nomi.get(), fileName(i).c_str(), 0) == 0 || ceduta_;
  }
  // Some file systems have the room only once the removal is on the disk.
  if (ceduta_) static_cast<void>(syncFile(cartella.get()));
  return ceduta_;
}

}  // namespace pellak::posix
