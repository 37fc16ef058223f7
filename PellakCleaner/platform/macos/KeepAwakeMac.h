#pragma once

#include "platform/KeepAwake.h"

namespace pellak::native {

/// An assertion of the power management ("NoDisplaySleepAssertion"). The system drops it by itself
/// when the process ends.
class KeepAwakeMac final : public KeepAwake {
 public:
  std::optional<std::uint32_t> acquire(const std::string& motivo) override;
  void release(std::uint32_t id) override;
};

}  // namespace pellak::native
