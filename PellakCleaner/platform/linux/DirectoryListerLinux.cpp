#include "platform/linux/DirectoryListerLinux.h"

#include <cerrno>
#include <cstddef>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/linux/SharedExtents.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/ErrnoError.h"
#include "platform/posix/FolderPosix.h"

namespace pellak::native {
namespace {

/// Folders passed on the way of a long path need not be readable.
constexpr int kTraverse = O_PATH;
constexpr int kStatFlags = AT_NO_AUTOMOUNT;

/// Below this a call could fail for lack of room (one record takes up to 280 bytes) or return
/// little for its price.
constexpr std::size_t kLeastRoom = std::size_t{32} * 1024;

EntryType typeOf(unsigned char type) {
  switch (type) {
    case DT_DIR:
      return EntryType::directory;
    case DT_LNK:
      return EntryType::link;
    case DT_REG:
      return EntryType::regular;
    case DT_UNKNOWN:
      return EntryType::unknown;
    default:
      return EntryType::other;
  }
}

bool isSelfOrParent(std::string_view name) { return name == "." || name == ".."; }

/// Appends the records of one getdents64 answer, which stay where they are.
void appendRecords(std::span<const std::byte> records, std::vector<ListedEntry>& entries) {
  while (records.size() > offsetof(dirent64, d_name)) {
    const auto* record = reinterpret_cast<const dirent64*>(records.data());
    const std::string_view name = record->d_name;
    if (!name.empty() && !isSelfOrParent(name)) entries.push_back({name, typeOf(record->d_type)});
    records = records.subspan(record->d_reclen);
  }
}

Result<EntryAttributes> asAttributes(Result<struct stat> record) {
  if (!record) return record.error();
  return posix::attributesOf(*record);
}

class HandleLinux final : public DirectoryHandle {
 public:
  explicit HandleLinux(posix::Descriptor folder) : folder_(std::move(folder)) {}

  Result<void> read(EntryBatch& into) override {
    for (;;) {
      const std::span<std::byte> room = into.room(kLeastRoom);
      const ssize_t got = ::getdents64(folder_.get(), room.data(), room.size());
      if (got < 0) return posix::errnoError(errno);
      if (got == 0) return {};
      const auto bytes = static_cast<std::size_t>(got);
      into.keep(bytes);
      appendRecords(room.first(bytes), into.entries);
    }
  }

  Result<std::vector<std::string>> names() override { return posix::readNames(folder_.get()); }

  Result<EntryAttributes> attributes(const char* name) const override {
    return asAttributes(posix::statAt(folder_.get(), name, kStatFlags));
  }

  Result<std::shared_ptr<DirectoryHandle>> open(const char* name) const override {
    return wrap(posix::openFolderAt(folder_.get(), name));
  }

  bool sharesSpace() const override { return sharesExtents(folder_.get()); }

  Result<OwnSpace> ownSpace(const char* name) const override {
    return ownExtents(folder_.get(), name);
  }

  static Result<std::shared_ptr<DirectoryHandle>> wrap(Result<posix::Descriptor> folder) {
    if (!folder) return folder.error();
    return std::shared_ptr<DirectoryHandle>(
        std::make_shared<HandleLinux>(std::move(folder).value()));
  }

 private:
  posix::Descriptor folder_;
};

}  // namespace

Result<std::shared_ptr<DirectoryHandle>> DirectoryListerLinux::open(std::string_view percorso) {
  return HandleLinux::wrap(posix::openFolder(percorso, kTraverse));
}

Result<EntryAttributes> DirectoryListerLinux::attributes(std::string_view percorso) {
  return asAttributes(posix::statPath(percorso, kTraverse, kStatFlags));
}

Result<std::string> DirectoryListerLinux::resolve(std::string_view percorso) {
  return posix::realPath(percorso, kTraverse);
}

std::size_t DirectoryListerLinux::descriptorBudget() const { return posix::folderBudget(); }

}  // namespace pellak::native
