#include "platform/macos/DirectoryListerMac.h"

#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <sys/attr.h>
#include <sys/unistd.h>
#include <sys/vnode.h>
#include <unistd.h>
#include <utility>

#include "platform/posix/BulkRecords.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/ErrnoError.h"
#include "platform/posix/FolderPosix.h"

namespace pellak::native {
namespace {

static_assert(bulk::kCommonMask ==
              (ATTR_CMN_RETURNED_ATTRS | ATTR_CMN_NAME | ATTR_CMN_DEVID | ATTR_CMN_OBJTYPE |
               ATTR_CMN_MODTIME | ATTR_CMN_FLAGS | ATTR_CMN_FILEID));
static_assert(bulk::kFileMask == (ATTR_FILE_TOTALSIZE | ATTR_FILE_ALLOCSIZE));
static_assert(VREG == 1 && VDIR == 2 && VLNK == 5);

/// Folders passed on the way of a long path.
constexpr int kTraverse = O_RDONLY;

Result<EntryAttributes> asAttributes(Result<struct stat> record) {
  if (!record) return record.error();
  EntryAttributes attributes = posix::attributesOf(*record);
  attributes.flags = record->st_flags;
  return attributes;
}

/// What the volume tells of these; a volume without clones leaves the private size out.
Result<OwnSpace> ownSpaceAt(int folder, const char* name) {
  attrlist wanted = {};
  wanted.bitmapcount = ATTR_BIT_MAP_COUNT;
  wanted.commonattr = ATTR_CMN_RETURNED_ATTRS;
  wanted.fileattr = ATTR_FILE_LINKCOUNT | ATTR_FILE_ALLOCSIZE;
  wanted.forkattr = ATTR_CMNEXT_PRIVATESIZE;
  // Packed by four bytes, in this order.
  struct [[gnu::packed]] {
    std::uint32_t length;
    attribute_set_t returned;
    std::uint32_t nlink;
    off_t allocated;
    off_t own;
  } answer = {};
  if (::getattrlistat(folder, name, &wanted, &answer, sizeof answer,
                      FSOPT_NOFOLLOW | FSOPT_ATTR_CMN_EXTENDED) != 0) {
    return posix::errnoError(errno);
  }
  if ((answer.returned.fileattr & wanted.fileattr) != wanted.fileattr) {
    return posix::errnoError(ENOTSUP);
  }
  const bool clones = (answer.returned.forkattr & ATTR_CMNEXT_PRIVATESIZE) != 0;
  return OwnSpace{clones ? answer.own : answer.allocated, answer.nlink};
}

class HandleMac final : public DirectoryHandle {
 public:
  explicit HandleMac(posix::Descriptor folder) : folder_(std::move(folder)) {}

  Result<void> read(EntryBatch& into) override {
    attrlist wanted = {};
    wanted.bitmapcount = ATTR_BIT_MAP_COUNT;
    wanted.commonattr = bulk::kCommonMask;
    wanted.fileattr = bulk::kFileMask;
    for (;;) {
      // A whole block for each call: how much of it is used only the records tell.
      const std::span<std::byte> room = into.room(EntryBatch::kBlockBytes);
      const int count =
          ::getattrlistbulk(folder_.get(), &wanted, room.data(), room.size(), FSOPT_NOFOLLOW);
      if (count < 0) return posix::errnoError(errno);
      if (count == 0) return {};
      into.keep(room.size());
      if (!bulk::parse(room, static_cast<std::size_t>(count), into)) return posix::errnoError(EIO);
    }
  }

  Result<std::vector<std::string>> names() override { return posix::readNames(folder_.get()); }

  Result<EntryAttributes> attributes(const char* name) const override {
    return asAttributes(posix::statAt(folder_.get(), name, 0));
  }

  Result<std::shared_ptr<DirectoryHandle>> open(const char* name) const override {
    return wrap(posix::openFolderAt(folder_.get(), name));
  }

  /// Listings tell no hard links, so every file is asked.
  bool sharesSpace() const override { return true; }

  Result<OwnSpace> ownSpace(const char* name) const override {
    return ownSpaceAt(folder_.get(), name);
  }

  static Result<std::shared_ptr<DirectoryHandle>> wrap(Result<posix::Descriptor> folder) {
    if (!folder) return folder.error();
    return std::shared_ptr<DirectoryHandle>(std::make_shared<HandleMac>(std::move(folder).value()));
  }

 private:
  posix::Descriptor folder_;
};

}  // namespace

Result<std::shared_ptr<DirectoryHandle>> DirectoryListerMac::open(std::string_view percorso) {
  return HandleMac::wrap(posix::openFolder(percorso, kTraverse));
}

Result<EntryAttributes> DirectoryListerMac::attributes(std::string_view percorso) {
  return asAttributes(posix::statPath(percorso, kTraverse, 0));
}

Result<std::string> DirectoryListerMac::resolve(std::string_view percorso) {
  return posix::realPath(percorso, kTraverse);
}

std::size_t DirectoryListerMac::descriptorBudget() const { return posix::folderBudget(); }

}  // namespace pellak::native
