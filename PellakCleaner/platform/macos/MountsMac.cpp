#include "platform/macos/MountsMac.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <sys/mount.h>
#include <sys/param.h>
#include <utility>

#include "platform/posix/ErrnoError.h"

namespace pellak::native {
namespace {

/// Mounts that come up between the two calls find room.
constexpr std::size_t kSpare = 16;
/// The user's volume shows the same folders at the top of the disk; paths are those.
constexpr std::string_view kDataVolume = "/System/Volumes/Data/";

Mount mountOf(const struct statfs& record) {
  Mount mount;
  std::string_view path = record.f_mntonname;
  if (path.starts_with(kDataVolume)) path.remove_prefix(kDataVolume.size() - 1);
  mount.path = path;
  mount.type = record.f_fstypename;
  mount.id = static_cast<std::uint32_t>(record.f_fsid.val[0]);
  mount.remote = (record.f_flags & MNT_LOCAL) == 0 || mount.type == "autofs" ||
                 mount.type.find("fuse") != std::string::npos;
  return mount;
}

}  // namespace

Result<std::vector<Mount>> MountsMac::list() {
  const int expected = ::getfsstat(nullptr, 0, MNT_NOWAIT);
  if (expected < 0) return posix::errnoError(errno);
  std::vector<struct statfs> records(static_cast<std::size_t>(expected) + kSpare);
  const int found = ::getfsstat(records.data(),
                                static_cast<int>(records.size() * sizeof(records[0])), MNT_NOWAIT);
  if (found < 0) return posix::errnoError(errno);
  std::vector<Mount> mounts;
  for (std::size_t i = 0; i < static_cast<std::size_t>(found); ++i) {
    Mount mount = mountOf(records[i]);
    const auto below = std::find_if(mounts.begin(), mounts.end(),
                                    [&](const Mount& other) { return other.path == mount.path; });
    if (below != mounts.end()) *below = std::move(mount);
    if (below == mounts.end()) mounts.push_back(std::move(mount));
  }
  return mounts;
}

}  // namespace pellak::native
