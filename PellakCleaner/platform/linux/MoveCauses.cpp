#include "platform/linux/MoveCauses.h"

#include <cerrno>
#include <fcntl.h>
#include <linux/stat.h>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/linux/OpenFiles.h"
#include "platform/posix/PathParts.h"

namespace pellak::native {
namespace {

std::string named(const std::string& percorso) { return "«" + percorso + "»"; }

bool mayWrite(const std::string& cartella) {
  return ::faccessat(AT_FDCWD, cartella.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

/// Whether an attribute that only an administrator takes away keeps it as it is.
bool sealed(const std::string& percorso) {
  struct statx record {};
  constexpr auto kSealed = STATX_ATTR_IMMUTABLE | STATX_ATTR_APPEND;
  return ::statx(AT_FDCWD, percorso.c_str(), AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_TYPE,
                 &record) == 0 &&
         (record.stx_attributes & kSealed) != 0;
}

bool someoneElses(const std::string& percorso) {
  struct stat info {};
  return ::lstat(percorso.c_str(), &info) == 0 && info.st_uid != ::geteuid();
}

/// The nearest folder above that exists and can't be entered or written.
std::string closedFolder(const std::string& percorso) {
  std::string cartella = posix::folderOf(percorso);
  while (cartella != "/" && ::access(cartella.c_str(), F_OK) != 0)
    cartella = posix::folderOf(cartella);
  return cartella;
}

std::string deniedItem(const std::string& percorso) {
  const std::string cartella = posix::folderOf(percorso);
  if (sealed(percorso)) return "è protetto dalle modifiche: toglie la protezione l'amministratore";
  if (sealed(cartella)) return "la cartella " + named(cartella) + " è protetta dalle modifiche";
  if (::access(cartella.c_str(), F_OK) != 0) {
    return "la cartella " + named(closedFolder(percorso)) + " non si può attraversare";
  }
  if (!mayWrite(cartella)) return "la cartella " + named(cartella) + " non è scrivibile";
  struct stat info {};
  if (::lstat(percorso.c_str(), &info) == 0 && S_ISDIR(info.st_mode) && !mayWrite(percorso)) {
    return "la cartella stessa non è scrivibile, e spostarla la cambierebbe";
  }
  if (someoneElses(percorso)) {
    return "appartiene a un altro utente, e in " + named(cartella) + " sposta solo chi possiede";
  }
  return "il sistema non permette di spostarlo";
}

/// What has the same words wherever it happens.
std::string anywhere(const Error& errore) {
  switch (errore.code) {
    case ENAMETOOLONG:
      return "il nome o il percorso è troppo lungo";
    case EIO:
      return "errore di lettura o scrittura del disco";
    case ENOTCONN:
    case EHOSTDOWN:
    case ETIMEDOUT:
    case ESTALE:
      return "il disco non risponde";
    case EMFILE:
    case ENFILE:
      return "troppi file aperti: riprova fra poco";
    case EDQUOT:
      return "la quota di disco è esaurita";
    default:
      break;
  }
  if (errore.kind != ErrorKind::failed || errore.code == 0) return {};
  return "il sistema rifiuta (errore " + std::to_string(errore.code) + ")";
}

Error with(Error errore, std::string causa) {
  if (causa.empty()) causa = anywhere(errore);
  if (errore.causa.empty()) errore.causa = std::move(causa);
  // The system's own words may be in any language.
  if (errore.kind == ErrorKind::failed && !errore.causa.empty()) errore.text = errore.causa;
  return errore;
}

}  // namespace

Error itemStays(Error errore, const std::string& percorso) {
  std::string causa;
  if (errore.kind == ErrorKind::denied) causa = deniedItem(percorso);
  if (errore.kind == ErrorKind::busy) {
    const auto nome = programHolding(percorso);
    causa = nome ? "è in uso da " + *nome : "è il punto di montaggio di un disco";
  }
  if (errore.code == EXDEV) causa = errore.text;
  return with(std::move(errore), std::move(causa));
}

Error trashRefuses(Error errore, const std::string& percorso, const std::string& cestino) {
  // Says itself what is wrong with that Trash.
  if (errore.code == 0 && !errore.text.empty()) return with(errore, errore.text);
  const std::string quale = cestino.empty()
                                ? "il Cestino del disco di " + named(posix::folderOf(percorso))
                                : "il Cestino " + named(cestino);
  std::string causa;
  if (errore.kind == ErrorKind::denied) {
    causa = cestino.empty() ? quale + " non si può creare" : quale + " non è scrivibile";
  } else if (errore.kind == ErrorKind::readOnly) {
    causa = quale + " è in sola lettura";
  } else if (errore.kind == ErrorKind::missing) {
    causa = quale + " non si può aprire";
  }
  return with(std::move(errore), std::move(causa));
}

Error placeRefuses(Error errore, const std::string& destinazione) {
  const std::string cartella = closedFolder(destinazione);
  std::string causa;
  switch (errore.kind) {
    case ErrorKind::denied:
      causa = sealed(cartella) ? "la cartella " + named(cartella) + " è protetta dalle modifiche"
                               : "la cartella " + named(cartella) + " non è scrivibile";
      break;
    case ErrorKind::readOnly:
      causa = "il disco di " + named(cartella) + " è in sola lettura";
      break;
    case ErrorKind::full:
      causa = "il disco di " + named(cartella) + " è pieno";
      break;
    case ErrorKind::exists:
      causa = "nel frattempo qualcos'altro ha preso il suo posto";
      break;
    case ErrorKind::missing:
      causa = errore.code == ENOTDIR ? named(cartella) + " non è una cartella"
                                     : "la cartella " + named(cartella) + " non c'è più";
      break;
    case ErrorKind::invalid:
      causa = errore.text;
      break;
    default:
      break;
  }
  if (errore.code == EXDEV) causa = "il Cestino e il suo posto sono su dischi diversi";
  return with(std::move(errore), std::move(causa));
}

}  // namespace pellak::native
