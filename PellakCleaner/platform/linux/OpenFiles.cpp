#include "platform/linux/OpenFiles.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <sys/stat.h>

#include "platform/posix/ReadToEnd.h"

namespace pellak::native {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMaxName = 4096;

bool leadsTo(const fs::path& link, const struct stat& cosa) {
  struct stat info {};
  return ::stat(link.c_str(), &info) == 0 && info.st_dev == cosa.st_dev &&
         info.st_ino == cosa.st_ino;
}

bool holds(const fs::path& processo, const struct stat& cosa) {
  if (leadsTo(processo / "cwd", cosa) || leadsTo(processo / "root", cosa)) return true;
  std::error_code fallito;
  for (fs::directory_iterator voce(processo / "fd", fallito), fine; !fallito && voce != fine;
       voce.increment(fallito)) {
    if (leadsTo(voce->path(), cosa)) return true;
  }
  return false;
}

}  // namespace

std::optional<std::string> programHolding(const std::string& percorso) {
  struct stat cosa {};
  if (::lstat(percorso.c_str(), &cosa) != 0) return {};
  std::error_code fallito;
  for (fs::directory_iterator voce("/proc", fallito), fine; !fallito && voce != fine;
       voce.increment(fallito)) {
    const std::string numero = voce->path().filename().native();
    const bool processo = std::all_of(numero.begin(), numero.end(),
                                      [](unsigned char c) { return std::isdigit(c) != 0; });
    if (!processo || !holds(voce->path(), cosa)) continue;
    const auto nome = posix::readToEnd((voce->path() / "comm").native(), kMaxName);
    const std::string riga = nome ? nome->substr(0, nome->find('\n')) : std::string();
    if (!riga.empty()) return riga;
  }
  return {};
}

}  // namespace pellak::native
