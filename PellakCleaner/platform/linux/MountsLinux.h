#pragma once

#include <string>
#include <utility>

#include "platform/Mounts.h"

namespace pellak::native {

/// The kernel's table of this process's mounts.
class MountsLinux final : public Mounts {
 public:
  explicit MountsLinux(std::string table = "/proc/self/mountinfo") : table_(std::move(table)) {}

  Result<std::vector<Mount>> list() override;

 private:
  const std::string table_;
};

}  // namespace pellak::native
