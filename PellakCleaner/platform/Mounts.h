#pragma once

#include <cstdint>
#include <string>
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

}  // namespace pellak
