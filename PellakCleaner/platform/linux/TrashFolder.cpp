#include "platform/linux/TrashFolder.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/vfs.h>
#include <utility>

#include "platform/linux/XdgFolders.h"
#include "platform/posix/EntryTypes.h"
#include "platform/posix/ErrnoError.h"
#include "platform/posix/HomeFolder.h"
#include "platform/posix/OwnFile.h"

namespace pellak::native {
namespace {

using posix::Descriptor;
using posix::errnoError;

constexpr int kFolder = O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW;
constexpr int kPassing = O_PATH | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW;
constexpr mode_t kPrivate = 0700;
constexpr mode_t kOrdinary = 0777;  // less what the user's mask takes

enum class Missing { make, fail };

Error linkOnTheWay() {
  return {ErrorKind::invalid, ELOOP, "il percorso passa per un collegamento simbolico"};
}

Error untrusted(const std::string& perche) { return {ErrorKind::failed, 0, perche}; }

uid_t user() { return posix::trashUser(xdgFolders().home); }

bool isLinkAt(int cartella, const char* nome) {
  struct stat info {};
  return ::fstatat(cartella, nome, &info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISLNK(info.st_mode);
}

/// Opens a folder of ours: no link, owned by the user.
Result<Descriptor> ownFolderAt(int sopra, const std::string& nome, Missing mancante) {
  const bool fatta = mancante == Missing::make && ::mkdirat(sopra, nome.c_str(), kPrivate) == 0;
  if (mancante == Missing::make && !fatta && errno != EEXIST) return errnoError(errno);
  Descriptor cartella(::openat(sopra, nome.c_str(), kFolder));
  if (!cartella) {
    if (isLinkAt(sopra, nome.c_str())) {
      return untrusted("il Cestino è un collegamento simbolico: non lo uso");
    }
    return errnoError(errno);
  }
  // Made by root in somebody's Trash it would keep out whom the Trash is for.
  if (fatta && user() != ::geteuid() &&
      ::fchown(cartella.get(), user(), static_cast<gid_t>(-1)) != 0) {
    return errnoError(errno);
  }
  struct stat info {};
  if (::fstat(cartella.get(), &info) != 0) return errnoError(errno);
  if (info.st_uid != user()) return untrusted("il Cestino appartiene a un altro utente");
  return cartella;
}

/// As the user would have made it, whoever runs the program.
bool makeOrdinary(int sopra, const std::string& nome) {
  if (::mkdirat(sopra, nome.c_str(), kOrdinary) != 0) return false;
  return user() == ::geteuid() ||
         ::fchownat(sopra, nome.c_str(), user(), static_cast<gid_t>(-1), AT_SYMLINK_NOFOLLOW) == 0;
}

bool isOverlay(int cartella) {
  struct statfs info {};
  return ::fstatfs(cartella, &info) == 0 && info.f_type == OVERLAYFS_SUPER_MAGIC;
}

/// What is there and keeps us out need not be made.
Error closedTo(Error errore, const std::string& cestino) {
  struct stat info {};
  if (errore.kind == ErrorKind::denied &&
      (::lstat(cestino.c_str(), &info) == 0 || errno == EACCES)) {
    errore.causa = "il Cestino «" + cestino + "» non si può aprire";
  }
  return errore;
}

Result<TrashFolder> fill(TrashFolder cestino, Missing mancante) {
  auto files = ownFolderAt(cestino.radice.get(), "files", mancante);
  if (!files) return closedTo(files.error(), cestino.percorso + "/files");
  auto info = ownFolderAt(cestino.radice.get(), "info", mancante);
  if (!info) return closedTo(info.error(), cestino.percorso + "/info");
  const auto qui = itemAt(files->get());
  if (!qui) return qui.error();
  cestino.files = std::move(*files);
  cestino.info = std::move(*info);
  cestino.volume = qui->volume;
  cestino.overlay = isOverlay(cestino.files.get());
  return cestino;
}

/// Whether a folder is where a volume begins.
Result<bool> isTop(int cartella) {
  const auto qui = itemAt(cartella);
  if (!qui) return qui.error();
  const auto sopra = itemAt(cartella, "..");
  if (!sopra) return sopra.error();
  return !(qui->volume == sopra->volume) || qui->ino == sopra->ino;
}

Result<Item> statItem(int cartella, const char* nome, int flags) {
  struct statx record {};
  constexpr unsigned kWanted = STATX_INO | STATX_MNT_ID | STATX_TYPE | STATX_MTIME | STATX_SIZE;
  if (::statx(cartella, nome, flags | AT_NO_AUTOMOUNT, kWanted, &record) != 0) {
    return errnoError(errno);
  }
  Item voce;
  voce.ino = record.stx_ino;
  voce.type = posix::typeOf(record.stx_mode);
  voce.mtimeNs = record.stx_mtime.tv_sec * 1'000'000'000 + record.stx_mtime.tv_nsec;
  voce.size = static_cast<std::int64_t>(record.stx_size);
  voce.volume.dev = makedev(record.stx_dev_major, record.stx_dev_minor);
  if ((record.stx_mask & STATX_MNT_ID) != 0) voce.volume.mount = record.stx_mnt_id;
  return voce;
}

/// Of the folder that a path, links followed, leads to.
Result<Volume> volumeAt(const std::string& percorso) {
  const auto voce = statItem(AT_FDCWD, percorso.c_str(), 0);
  if (!voce) return voce.error();
  return voce->volume;
}

/// ".Trash/<uid>", when an administrator has set it up as it must be.
Result<Descriptor> sharedTrash(int cima, const std::string& utente, Missing mancante) {
  struct stat info {};
  if (::fstatat(cima, ".Trash", &info, AT_SYMLINK_NOFOLLOW) != 0) return errnoError(errno);
  if (!S_ISDIR(info.st_mode) || (info.st_mode & S_ISVTX) == 0) {
    return untrusted("il Cestino comune del volume non è sicuro");
  }
  const Descriptor comune(::openat(cima, ".Trash", kFolder));
  if (!comune) return errnoError(errno);
  return ownFolderAt(comune.get(), utente, mancante);
}

}  // namespace

Result<Item> itemAt(int file, const char* nome) {
  return statItem(file, nome, AT_EMPTY_PATH | AT_SYMLINK_NOFOLLOW);
}

Result<Descriptor> openWithoutLinks(std::string_view percorso, std::string_view fidata, bool crea) {
  if (!percorso.starts_with('/')) return errnoError(EINVAL);
  std::string radice = "/";
  std::string_view resto = percorso;
  if (!fidata.empty() && fidata != "/" && percorso.starts_with(fidata) &&
      (percorso.size() == fidata.size() || percorso[fidata.size()] == '/')) {
    radice = fidata;
    resto.remove_prefix(fidata.size());
  }
  Descriptor qui(::open(radice.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!qui) return errnoError(errno);
  while (!resto.empty()) {
    const std::size_t barra = resto.find('/');
    const std::string nome(resto.substr(0, barra));
    resto.remove_prefix(barra == std::string_view::npos ? resto.size() : barra + 1);
    if (nome.empty()) continue;
    if (nome == "." || nome == "..") return errnoError(EINVAL);
    Descriptor sotto(::openat(qui.get(), nome.c_str(), kPassing));
    if (!sotto && crea && errno == ENOENT && makeOrdinary(qui.get(), nome)) {
      sotto = Descriptor(::openat(qui.get(), nome.c_str(), kPassing));
    }
    if (!sotto) {
      const int perche = errno;
      return isLinkAt(qui.get(), nome.c_str()) ? linkOnTheWay() : errnoError(perche);
    }
    qui = std::move(sotto);
  }
  return qui;
}

std::string homeTrashPath() { return xdgDataHome() + "/Trash"; }

std::string realHomeTrashPath() {
  std::error_code fallito;
  const auto sopra = std::filesystem::weakly_canonical(xdgDataHome(), fallito);
  return fallito ? homeTrashPath() : sopra.native() + "/Trash";
}

Result<Volume> homeTrashVolume() {
  std::string cartella = posix::folderOf(homeTrashPath());
  for (;;) {
    auto volume = volumeAt(cartella);
    if (volume || cartella == "/") return volume;
    cartella = posix::folderOf(cartella);
  }
}

Result<TrashFolder> openHomeTrash() {
  TrashFolder cestino;
  // The log names it for good, and a home folder may be reached by another name tomorrow.
  cestino.percorso = realHomeTrashPath();
  const std::string sopra = posix::folderOf(cestino.percorso);
  if (auto fatte = posix::makeFolders(sopra, kPrivate); !fatte) return fatte.error();
  const Descriptor dati(::open(sopra.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!dati) return closedTo(errnoError(errno), cestino.percorso);
  auto radice = ownFolderAt(dati.get(), "Trash", Missing::make);
  if (!radice) return closedTo(radice.error(), cestino.percorso);
  cestino.radice = std::move(*radice);
  return fill(std::move(cestino), Missing::make);
}

Result<TrashFolder> openVolumeTrash(const std::string& cima) {
  const Descriptor sopra(::open(cima.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!sopra) return errnoError(errno);
  const std::string utente = std::to_string(user());
  TrashFolder cestino;
  cestino.cima = cima;
  const std::string base = cima == "/" ? std::string() : cima;
  if (auto comune = sharedTrash(sopra.get(), utente, Missing::make)) {
    cestino.percorso = base + "/.Trash/" + utente;
    cestino.radice = std::move(*comune);
    return fill(std::move(cestino), Missing::make);
  }
  auto proprio = ownFolderAt(sopra.get(), ".Trash-" + utente, Missing::make);
  cestino.percorso = base + "/.Trash-" + utente;
  if (!proprio) return closedTo(proprio.error(), cestino.percorso);
  cestino.radice = std::move(*proprio);
  return fill(std::move(cestino), Missing::make);
}

std::string topOfVolume(std::string_view cartella, Volume volume) {
  std::string cima(cartella);
  while (cima != "/") {
    std::string sopra = posix::folderOf(cima);
    // A folder whose path is too long to ask for lies on the volume of the ones below it.
    const auto suo = volumeAt(sopra);
    if (suo && !(*suo == volume)) break;
    cima = std::move(sopra);
  }
  return cima;
}

std::string topOfTrash(std::string_view cestino) {
  const std::string utente = std::to_string(user());
  for (const std::string& coda : {"/.Trash/" + utente, "/.Trash-" + utente}) {
    if (!cestino.ends_with(coda)) continue;
    cestino.remove_suffix(coda.size());
    return cestino.empty() ? "/" : std::string(cestino);
  }
  return {};
}

namespace {

/// By whatever name: records of before may hold another one.
bool isHomeTrash(const std::string& cestino) {
  const std::string vera = realHomeTrashPath();
  if (cestino == vera || cestino == homeTrashPath()) return true;
  std::error_code fallito;
  const auto sopra = std::filesystem::weakly_canonical(posix::folderOf(cestino), fallito);
  return !fallito && cestino.ends_with("/Trash") && sopra.native() + "/Trash" == vera;
}

/// The root of a volume's own Trash, by its path; `cima` is set to the volume's top.
Result<Descriptor> volumeTrashAt(std::string_view percorso, std::string_view fidata,
                                 std::string& cima) {
  cima = topOfTrash(percorso);
  if (cima.empty()) return errnoError(EINVAL);
  const auto sopra = openWithoutLinks(cima, fidata);
  if (!sopra) return sopra.error();
  const auto volume = isTop(sopra->get());
  if (!volume) return volume.error();
  if (!*volume) return errnoError(EINVAL);
  const std::string utente = std::to_string(user());
  return percorso.ends_with("/" + utente)
             ? sharedTrash(sopra->get(), utente, Missing::fail)
             : ownFolderAt(sopra->get(), ".Trash-" + utente, Missing::fail);
}

}  // namespace

Result<TrashFolder> openTrashHolding(std::string_view nelCestino, std::string_view fidata) {
  const std::string files = posix::folderOf(nelCestino);
  if (!files.ends_with("/files")) return errnoError(EINVAL);
  TrashFolder cestino;
  cestino.percorso = posix::folderOf(files);
  auto radice = isHomeTrash(cestino.percorso)
                    ? ownFolderAt(AT_FDCWD, cestino.percorso, Missing::fail)
                    : volumeTrashAt(cestino.percorso, fidata, cestino.cima);
  if (!radice) return radice.error();
  cestino.radice = std::move(*radice);
  return fill(std::move(cestino), Missing::fail);
}

Result<TrashFolder> openPlainTrash(const std::string& cartella) {
  TrashFolder cestino;
  cestino.percorso = cartella;
  auto radice = ownFolderAt(AT_FDCWD, cartella, Missing::fail);
  if (!radice) return radice.error();
  cestino.files = std::move(*radice);
  return cestino;
}

}  // namespace pellak::native
