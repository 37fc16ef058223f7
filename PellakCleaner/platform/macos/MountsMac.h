#pragma once

#include "platform/Mounts.h"

namespace pellak::native {

/// The kernel's list of mounted volumes; their numbers are those of their devices.
class MountsMac final : public Mounts {
 public:
  Result<std::vector<Mount>> list() override;
};

}  // namespace pellak::native
