#include "platform/posix/ErrnoError.h"

#include <algorithm>
#include <array>
#include <cerrno>

#include "platform/SystemError.h"

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

struct Words {
  int number;
  const char* text;
};

/// The system's own words may be in any language.
constexpr std::array kWords = {
    Words{ENOENT, "non esiste"},
    Words{ENOTDIR, "una parte del percorso non è una cartella"},
    Words{ESRCH, "il processo non c'è più"},
    Words{EPERM, "il sistema non lo permette"},
    Words{EACCES, "permesso negato"},
    Words{EBUSY, "è in uso"},
    Words{ETXTBSY, "è un programma in esecuzione"},
    Words{ENOSPC, "spazio esaurito"},
    Words{EDQUOT, "la quota di disco è esaurita"},
    Words{EEXIST, "il nome è già occupato"},
    Words{ENOTEMPTY, "la cartella non è vuota"},
    Words{EROFS, "il disco è in sola lettura"},
    Words{ECANCELED, "operazione annullata"},
    Words{EINVAL, "non è quello atteso"},
    // Nothing of ours follows a link.
    Words{ELOOP, "è un collegamento simbolico"},
    Words{ENAMETOOLONG, "il nome o il percorso è troppo lungo"},
    Words{EILSEQ, "il disco non ammette questo nome"},
    Words{EIO, "errore di lettura o scrittura del disco"},
    Words{ENOTCONN, "il disco non risponde"},
    Words{EHOSTDOWN, "il disco non risponde"},
    Words{EHOSTUNREACH, "il disco non risponde"},
    Words{ETIMEDOUT, "il disco non risponde"},
    Words{ESTALE, "il disco non risponde"},
    Words{ENODEV, "il disco non c'è più"},
    Words{ENXIO, "non è un file che si possa aprire"},
    Words{EMFILE, "troppi file aperti: riprova fra poco"},
    Words{ENFILE, "troppi file aperti: riprova fra poco"},
    Words{ENOMEM, "memoria esaurita"},
    Words{EAGAIN, "non disponibile in questo momento: riprova fra poco"},
    Words{EINTR, "interrotto: riprova"},
    Words{EFBIG, "il file è troppo grande"},
    Words{EOVERFLOW, "il file è troppo grande"},
    Words{EISDIR, "è una cartella"},
    Words{EXDEV, "è su un altro disco"},
    Words{EMLINK, "il disco non ammette altri nomi"},
    Words{ENOTSUP, "il disco non lo permette"},
    Words{EOPNOTSUPP, "il disco non lo permette"},
    Words{ENOSYS, "il sistema non lo prevede"},
    Words{EPIPE, "dall'altra parte non legge nessuno"},
    Words{ENOEXEC, "non è un programma eseguibile"},
    Words{E2BIG, "troppi argomenti"},
};

const char* wordsOf(int number) {
  const auto* const found = std::find_if(kWords.begin(), kWords.end(),
                                         [&](const Words& uno) { return uno.number == number; });
  return found == kWords.end() ? "" : found->text;
}

}  // namespace

Error errnoError(int number) { return {kindOf(number), number, wordsOf(number)}; }

}  // namespace pellak::posix

namespace pellak {

Error systemError(int number) { return posix::errnoError(number); }

}  // namespace pellak
