#include "platform/posix/FolderPosix.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>

#include "platform/posix/EntryTypes.h"
#include "platform/posix/ErrnoError.h"
#include "platform/posix/RecordTimes.h"

namespace pellak::posix {
namespace {

constexpr int kListFlags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
constexpr std::size_t kLongest = PATH_MAX - 1;

/// A path cut so that one call can take the rest: a folder on the way (none: the path as it is)
/// and what follows it.
struct Tail {
  Descriptor folder;
  std::string rest;

  int at() const { return folder ? folder.get() : AT_FDCWD; }
};

Result<Tail> shorten(std::string_view percorso, int traverse) {
  if (percorso.empty() || percorso.find('\0') != std::string_view::npos) return errnoError(EINVAL);
  Tail tail;
  while (percorso.size() > kLongest) {
    const std::size_t cut = percorso.rfind('/', kLongest);
    if (cut == std::string_view::npos || cut == 0) return errnoError(ENAMETOOLONG);
    const std::string head(percorso.substr(0, cut));
    Descriptor next(::openat(tail.at(), head.c_str(), traverse | O_DIRECTORY | O_CLOEXEC));
    if (!next) return errnoError(errno);
    tail.folder = std::move(next);
    const std::size_t begin = percorso.find_first_not_of('/', cut);
    percorso = begin == std::string_view::npos ? "." : percorso.substr(begin);
  }
  tail.rest = percorso;
  return tail;
}

/// Where a link points to; empty for what is no link.
Result<std::string> linkTarget(std::string_view percorso, int traverse) {
  Result<Tail> tail = shorten(percorso, traverse);
  if (!tail) return tail.error();
  std::string target(PATH_MAX, '\0');
  const ssize_t bytes = ::readlinkat(tail->at(), tail->rest.c_str(), target.data(), target.size());
  if (bytes < 0 && errno != EINVAL) return errnoError(errno);
  target.resize(bytes < 0 ? 0 : static_cast<std::size_t>(bytes));
  return target;
}

}  // namespace

Result<Descriptor> openFolder(std::string_view percorso, int traverse) {
  Result<Tail> tail = shorten(percorso, traverse);
  if (!tail) return tail.error();
  return openFolderAt(tail->at(), tail->rest.c_str());
}

Result<Descriptor> openFolderAt(int folder, const char* name) {
  Descriptor opened(::openat(folder, name, kListFlags));
  if (!opened) return errnoError(errno);
  return opened;
}

Result<struct stat> statPath(std::string_view percorso, int traverse, int flags) {
  Result<Tail> tail = shorten(percorso, traverse);
  if (!tail) return tail.error();
  return statAt(tail->at(), tail->rest.c_str(), flags);
}

Result<std::string> realPath(std::string_view percorso, int traverse) {
  constexpr int kMostLinks = 40;
  if (!percorso.starts_with('/')) return errnoError(EINVAL);
  std::string real;
  std::string rest(percorso);
  for (int links = 0; !rest.empty();) {
    const std::size_t slash = std::min(rest.find('/'), rest.size());
    const std::string name = rest.substr(0, slash);
    rest.erase(0, slash + 1);
    if (name.empty() || name == ".") continue;
    if (name == "..") {
      real.erase(std::min(real.rfind('/'), real.size()));
      continue;
    }
    const std::string next = real + '/' + name;
    const Result<std::string> target = linkTarget(next, traverse);
    if (!target) return target.error();
    if (target->empty()) {
      real = next;
      continue;
    }
    if (++links > kMostLinks) return errnoError(ELOOP);
    if (target->starts_with('/')) real.clear();
    rest = *target + '/' + rest;
  }
  return real.empty() ? "/" : real;
}

Result<struct stat> statAt(int folder, const char* name, int flags) {
  struct stat record;
  if (::fstatat(folder, name, &record, AT_SYMLINK_NOFOLLOW | flags) != 0) return errnoError(errno);
  return record;
}

EntryAttributes attributesOf(const struct stat& record) {
  EntryAttributes a;
  a.type = typeOf(record.st_mode);
  a.size = record.st_size;
  a.alloc = static_cast<std::int64_t>(record.st_blocks) * 512;
  a.mtime = record.st_mtime;
  const RecordTimes times = timesOf(record);
  a.mtimeNs = times.modified;
  a.ctimeNs = times.changed;
  a.ino = record.st_ino;
  a.dev = static_cast<std::int32_t>(record.st_dev);
  a.mode = record.st_mode;
  a.nlink = static_cast<std::uint32_t>(record.st_nlink);
  a.uid = record.st_uid;
  a.gid = record.st_gid;
  return a;
}

Result<std::vector<std::string>> readNames(int folder) {
  const int copy = ::fcntl(folder, F_DUPFD_CLOEXEC, 0);
  if (copy < 0) return errnoError(errno);
  const std::unique_ptr<DIR, int (*)(DIR*)> stream(::fdopendir(copy), ::closedir);
  if (!stream) {
    Error error = errnoError(errno);
    ::close(copy);
    return error;
  }
  ::rewinddir(stream.get());
  std::vector<std::string> names;
  errno = 0;
  while (const dirent* entry = ::readdir(stream.get())) {
    const std::string_view name = entry->d_name;
    if (!name.empty() && name != "." && name != "..") names.emplace_back(name);
    errno = 0;
  }
  if (errno != 0 && names.empty()) return errnoError(errno);
  return names;
}

std::size_t folderBudget() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return 32;
  return std::clamp<std::size_t>(static_cast<std::size_t>(limit.rlim_cur / 4), 8, 512);
}

}  // namespace pellak::posix
