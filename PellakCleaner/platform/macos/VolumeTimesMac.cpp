#include <string_view>
#include <sys/mount.h>
#include <sys/param.h>

#include "platform/posix/VolumeTimes.h"

namespace pellak::posix {

bool keepsChangeTimes(int file) {
  struct statfs volume {};
  if (::fstatfs(file, &volume) != 0) return false;
  const std::string_view type = volume.f_fstypename;
  return type == "apfs" || type == "hfs";
}

}  // namespace pellak::posix
