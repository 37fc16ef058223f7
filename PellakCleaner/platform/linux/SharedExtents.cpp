#include "platform/linux/SharedExtents.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fcntl.h>
#include <linux/fs.h>
#include <linux/magic.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include "platform/posix/Descriptor.h"
#include "platform/posix/ErrnoError.h"

namespace pellak::native {
namespace {

// Not blocking: a pipe may have taken the file's place.
constexpr int kOpenFlags = O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

/// Kinds that linux/magic.h leaves out.
constexpr std::uint32_t kBcachefs = 0xca451a4e;

constexpr std::uint32_t kNoRoomOfItsOwn =
    FIEMAP_EXTENT_SHARED | FIEMAP_EXTENT_DATA_INLINE | FIEMAP_EXTENT_DATA_TAIL;
constexpr std::int64_t kBlock = 4096;

/// Extents asked for at once.
constexpr std::size_t kBatch = 128;

struct alignas(fiemap) Question {
  std::array<std::byte, sizeof(fiemap) + kBatch * sizeof(fiemap_extent)> bytes;
};

/// The next extents from `start` on; empty when there are none.
Result<std::span<const fiemap_extent>> extentsFrom(int file, std::uint64_t start, Question& room) {
  auto* const map = reinterpret_cast<fiemap*>(room.bytes.data());
  std::memset(map, 0, sizeof *map);
  map->fm_start = start;
  map->fm_length = FIEMAP_MAX_OFFSET - start;
  map->fm_extent_count = kBatch;
  if (::ioctl(file, FS_IOC_FIEMAP, map) != 0) return posix::errnoError(errno);
  const auto* first = reinterpret_cast<const fiemap_extent*>(room.bytes.data() + sizeof *map);
  return std::span<const fiemap_extent>(first,
                                        std::min<std::size_t>(map->fm_mapped_extents, kBatch));
}

}  // namespace

bool sharesExtents(int folder) {
  struct statfs volume = {};
  if (::fstatfs(folder, &volume) != 0) return false;
  constexpr std::array<std::uint32_t, 4> kKinds = {BTRFS_SUPER_MAGIC, XFS_SUPER_MAGIC,
                                                   OCFS2_SUPER_MAGIC, kBcachefs};
  return std::count(kKinds.begin(), kKinds.end(), static_cast<std::uint32_t>(volume.f_type)) > 0;
}

std::int64_t ownBytes(std::span<const fiemap_extent> extents) {
  std::int64_t bytes = 0;
  for (const fiemap_extent& extent : extents) {
    if ((extent.fe_flags & kNoRoomOfItsOwn) != 0) continue;
    const auto length = static_cast<std::int64_t>(extent.fe_length);
    bytes += (extent.fe_flags & FIEMAP_EXTENT_ENCODED) != 0 ? std::min(length, kBlock) : length;
  }
  return bytes;
}

Result<OwnSpace> ownExtents(int folder, const char* name) {
  const posix::Descriptor file(::openat(folder, name, kOpenFlags));
  if (!file) return posix::errnoError(errno);
  struct stat record = {};
  if (::fstat(file.get(), &record) != 0) return posix::errnoError(errno);
  if (!S_ISREG(record.st_mode)) return posix::errnoError(EINVAL);
  OwnSpace own{0, static_cast<std::uint32_t>(record.st_nlink)};
  Question room;
  for (std::uint64_t start = 0;;) {
    const auto extents = extentsFrom(file.get(), start, room);
    if (!extents) return extents.error();
    own.bytes += ownBytes(*extents);
    if (extents->empty()) break;
    const fiemap_extent& last = extents->back();
    const std::uint64_t next = last.fe_logical + last.fe_length;
    if ((last.fe_flags & FIEMAP_EXTENT_LAST) != 0 || next <= start) break;
    start = next;
  }
  own.bytes = std::min(own.bytes, static_cast<std::int64_t>(record.st_blocks) * 512);
  return own;
}

}  // namespace pellak::native
