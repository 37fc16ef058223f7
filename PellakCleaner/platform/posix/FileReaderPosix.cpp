#include "platform/posix/FileReaderPosix.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/posix/Descriptor.h"
#include "platform/posix/ErrnoError.h"
#include "platform/posix/FolderPosix.h"
#include "platform/posix/ReadAdvice.h"
#include "platform/posix/RecordTimes.h"
#include "platform/posix/VolumeTimes.h"

namespace pellak::posix {
namespace {

// Not blocking: a pipe may have taken the file's place.
constexpr int kReadFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

class OpenFilePosix final : public OpenFile {
 public:
  explicit OpenFilePosix(Descriptor file) : file_(std::move(file)) {}

  Result<FileMark> mark() const override {
    struct stat record {};
    if (::fstat(file_.get(), &record) != 0) return errnoError(errno);
    holes_ = static_cast<std::int64_t>(record.st_blocks) * 512 < record.st_size;
    FileMark mark;
    mark.regular = S_ISREG(record.st_mode);
    mark.size = record.st_size;
    mark.dev = static_cast<std::uint64_t>(record.st_dev);
    mark.ino = record.st_ino;
    const RecordTimes times = timesOf(record);
    mark.mtimeNs = times.modified;
    mark.ctimeNs = times.changed;
    return mark;
  }

  Result<std::size_t> readAt(std::int64_t offset, std::span<std::byte> into) const override {
    std::size_t done = holes_ ? fillHole(offset, into) : 0;
    while (done < into.size()) {
      const ssize_t part = ::pread(file_.get(), into.data() + done, into.size() - done,
                                   static_cast<off_t>(offset) + static_cast<off_t>(done));
      if (part == 0) break;
      if (part > 0) {
        done += static_cast<std::size_t>(part);
      } else if (errno != EINTR) {
        return errnoError(errno);
      }
    }
    return done;
  }

  bool allHole() const override {
    return ::lseek(file_.get(), 0, SEEK_DATA) < 0 && errno == ENXIO &&
           ::lseek(file_.get(), 0, SEEK_END) > 0;
  }

  bool keepsChangeTimes() const override { return posix::keepsChangeTimes(file_.get()); }

 private:
  /// Zeros for the hole that `offset` lies in, as far as it goes; no page is read for them.
  std::size_t fillHole(std::int64_t offset, std::span<std::byte> into) const {
    off_t data = ::lseek(file_.get(), static_cast<off_t>(offset), SEEK_DATA);
    if (data < 0 && errno == ENXIO) data = ::lseek(file_.get(), 0, SEEK_END);
    if (data <= offset) return 0;
    const auto zeros =
        std::min<std::uint64_t>(into.size(), static_cast<std::uint64_t>(data - offset));
    std::fill_n(into.begin(), zeros, std::byte{0});
    return static_cast<std::size_t>(zeros);
  }

  Descriptor file_;
  mutable std::atomic<bool> holes_{false};  ///< by the last mark: fewer blocks than its length
};

int openAt(int folder, const char* name) {
  for (;;) {
    const int number = ::openat(folder, name, kReadFlags);
    if (number >= 0 || errno != EINTR) return number;
  }
}

Result<Descriptor> openPath(std::string_view percorso) {
  if (percorso.empty() || percorso.find('\0') != std::string_view::npos) return errnoError(EINVAL);
  Descriptor file;
  if (percorso.size() < PATH_MAX) {
    file = Descriptor(openAt(AT_FDCWD, std::string(percorso).c_str()));
  } else {
    const std::size_t barra = percorso.rfind('/');
    if (barra == std::string_view::npos || barra == 0) return errnoError(ENAMETOOLONG);
    auto folder = openFolder(percorso.substr(0, barra), O_RDONLY);
    if (!folder) return folder.error();
    file = Descriptor(openAt(folder->get(), std::string(percorso.substr(barra + 1)).c_str()));
  }
  if (!file) return errnoError(errno);
  return file;
}

}  // namespace

Result<std::unique_ptr<OpenFile>> FileReaderPosix::open(std::string_view percorso, ReadPlan plan) {
  auto file = openPath(percorso);
  if (!file) return file.error();
  adviseRead(file->get(), plan);
  return std::unique_ptr<OpenFile>(std::make_unique<OpenFilePosix>(std::move(file).value()));
}

bool FileReaderPosix::writable(std::string_view cartella) {
  return ::faccessat(AT_FDCWD, std::string(cartella).c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

}  // namespace pellak::posix

namespace pellak {

std::unique_ptr<FileReader> creaFileReader() { return std::make_unique<posix::FileReaderPosix>(); }

}  // namespace pellak
