#include "platform/posix/ReadToEnd.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/posix/ErrnoError.h"

namespace pellak::posix {

Result<Descriptor> openRegular(const std::string& percorso) {
  struct stat info {};
  // To open a device, or a pipe, is to do something with it.
  if (::stat(percorso.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) return errnoError(EINVAL);
  Descriptor file;
  do {
    file = Descriptor(::open(percorso.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  } while (!file && errno == EINTR);
  if (!file || ::fstat(file.get(), &info) != 0) return errnoError(errno);
  if (!S_ISREG(info.st_mode)) return errnoError(EINVAL);
  return file;
}

Result<std::string> readToEnd(int file, std::size_t massimo) {
  std::string testo;
  std::array<char, 8192> parte{};
  while (testo.size() < massimo) {
    const std::size_t quanti = std::min(parte.size(), massimo - testo.size());
    const ssize_t letti = ::read(file, parte.data(), quanti);
    if (letti < 0 && errno == EINTR) continue;
    if (letti < 0) return errnoError(errno);
    if (letti == 0) break;
    testo.append(parte.data(), static_cast<std::size_t>(letti));
  }
  return testo;
}

Result<std::string> readToEnd(const std::string& percorso, std::size_t massimo) {
  const auto file = openRegular(percorso);
  if (!file) return file.error();
  return readToEnd(file->get(), massimo);
}

}  // namespace pellak::posix
