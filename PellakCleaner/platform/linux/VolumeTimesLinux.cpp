#include <algorithm>
#include <array>
#include <linux/magic.h>
#include <sys/vfs.h>

#include "platform/posix/VolumeTimes.h"

namespace pellak::posix {
namespace {

// Not in the system's headers.
constexpr long kZfs = 0x2fc12fc1;
constexpr long kBcachefs = 0xca451a4e;
constexpr long kXfs = 0x58465342;

}  // namespace

bool keepsChangeTimes(int file) {
  constexpr std::array<long, 7> kFit = {
      EXT4_SUPER_MAGIC, BTRFS_SUPER_MAGIC, F2FS_SUPER_MAGIC, TMPFS_MAGIC, kXfs, kZfs, kBcachefs};
  struct statfs volume {};
  if (::fstatfs(file, &volume) != 0) return false;
  return std::find(kFit.begin(), kFit.end(), static_cast<long>(volume.f_type)) != kFit.end();
}

}  // namespace pellak::posix
