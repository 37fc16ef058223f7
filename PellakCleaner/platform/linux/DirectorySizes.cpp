#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <optional>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/TrashFolder.h"
#include "platform/linux/TrashRecord.h"
#include "platform/posix/OwnFile.h"
#include "platform/posix/ReadToEnd.h"

namespace pellak::native {
namespace {

constexpr const char* kCache = "directorysizes";
/// A line for each folder in the Trash: far more than anybody has.
constexpr std::size_t kMaxCache = std::size_t{64} << 20U;

/// Nothing when what stands there is no cache of ours to replace.
std::optional<std::string> readCache(int cartella) {
  const auto file = posix::openOwnAt(cartella, kCache, O_RDONLY);
  if (!file) {
    const bool manca = file.error().kind == ErrorKind::missing;
    return manca ? std::optional<std::string>(std::string()) : std::nullopt;
  }
  auto testo = posix::readToEnd(file->get(), kMaxCache + 1);
  if (!testo || testo->size() > kMaxCache) return std::nullopt;
  return std::move(*testo);
}

bool isThere(int cartella, const std::string& nome) {
  struct stat info {};
  return ::fstatat(cartella, nome.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0;
}

/// The lines whose folders are still in the Trash and not among those that arrived.
std::string stillThere(const TrashFolder& cestino, const std::string& vecchie,
                       const std::vector<FolderSize>& arrivate) {
  std::set<std::string_view> nuove;
  for (const FolderSize& cartella : arrivate) nuove.insert(cartella.nome);
  std::string tenute;
  for (std::size_t da = 0; da < vecchie.size();) {
    const std::size_t fine = std::min(vecchie.find('\n', da), vecchie.size());
    const std::string_view riga = std::string_view(vecchie).substr(da, fine - da);
    da = fine + 1;
    const std::size_t spazio = riga.rfind(' ');
    if (spazio == std::string_view::npos) continue;
    const std::string nome = percentDecoded(riga.substr(spazio + 1));
    if (nuove.contains(nome) || !isThere(cestino.files.get(), nome)) continue;
    tenute.append(riga).append("\n");
  }
  return tenute;
}

/// Milliseconds: how a reader knows that the line is of this very record.
std::int64_t modified(const struct stat& info) {
  return info.st_mtim.tv_sec * std::int64_t{1000} + info.st_mtim.tv_nsec / 1'000'000;
}

void replaceCache(const TrashFolder& cestino, const std::string& testo) {
  const std::string nuovo = std::string(kCache) + "." + std::to_string(::getpid());
  const int cartella = cestino.radice.get();
  const posix::Descriptor file(::openat(
      cartella, nuovo.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0600));
  if (!file) return;
  posix::giveToOwner(file.get(), cartella);
  const ssize_t scritti = ::write(file.get(), testo.data(), testo.size());
  if (scritti != static_cast<ssize_t>(testo.size()) ||
      ::renameat(cartella, nuovo.c_str(), cartella, kCache) != 0) {
    ::unlinkat(cartella, nuovo.c_str(), 0);
  }
}

}  // namespace

void recordDirectorySizes(const TrashFolder& cestino, const std::vector<FolderSize>& arrivate) {
  const auto vecchie = readCache(cestino.radice.get());
  if (!vecchie) return;
  std::string testo = stillThere(cestino, *vecchie, arrivate);
  for (const FolderSize& cartella : arrivate) {
    struct stat info {};
    const std::string record = recordName(cartella.nome);
    if (::fstatat(cestino.info.get(), record.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) continue;
    testo += std::to_string(cartella.size) + " " + std::to_string(modified(info)) + " " +
             percentEncoded(cartella.nome) + "\n";
  }
  if (testo != *vecchie) replaceCache(cestino, testo);
}

}  // namespace pellak::native
