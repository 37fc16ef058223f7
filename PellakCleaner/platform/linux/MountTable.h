#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "platform/linux/MountsLinux.h"
#include "platform/posix/Descriptor.h"

namespace pellak::native {

/// The list of mounts as of the last question, read again only when the system says that it has
/// changed. One thread at a time.
class MountTable {
 public:
  /// Success when nothing is mounted below the folder at this moment. The path is the system's own
  /// name of it, without links. Errors: mounted, denied, failed (the system does not tell).
  Result<void> nothingBelow(std::string_view cartella);

 private:
  bool changed();

  posix::Descriptor watch_;
  MountsLinux source_;
  std::optional<std::vector<Mount>> known_;
};

}  // namespace pellak::native
