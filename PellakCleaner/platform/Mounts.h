#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Result.h"

namespace pellak {

/// A volume and the place where it is mounted.
struct Mount {
  std::string path;      ///< the place, bytes, without links, no trailing slash ("/" excepted)
  std::string type;      ///< the file system's name as the system tells it
  std::uint64_t id = 0;  ///< the system's own number of the mount
  /// Served over the network or by a program (FUSE), or mounted only when somebody looks.
  bool remote = false;
};

/// What is mounted where. Any thread.
class Mounts {
 public:
  virtual ~Mounts() = default;

  /// The mounts of this moment, one for each place: of several over one another the topmost.
  virtual Result<std::vector<Mount>> list() = 0;
};

/// A mount below a folder, the folder itself not counting; nullptr when there is none. Compares
/// text: the path is absolute, without links or a trailing slash.
inline const Mount* mountBelow(std::span<const Mount> mounts, std::string_view cartella) {
  const auto sotto = std::find_if(mounts.begin(), mounts.end(), [&](const Mount& mount) {
    return cartella == "/"
               ? mount.path.size() > 1
               : mount.path.size() > cartella.size() + 1 && mount.path[cartella.size()] == '/' &&
                     mount.path.starts_with(cartella);
  });
  return sotto == mounts.end() ? nullptr : &*sotto;
}

}  // namespace pellak
