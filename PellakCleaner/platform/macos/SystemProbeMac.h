#pragma once

#include "platform/SystemProbe.h"

namespace pellak::native {

/// What the kernel's statistics and the power sources service tell. Every call reads anew.
class SystemProbeMac final : public SystemProbe {
 public:
  std::vector<CoreTicks> cores() override;
  std::optional<NetBytes> network() override;
  std::optional<double> load() override;
  std::optional<MemoryUse> memory() override;
  std::optional<DiskSpace> disk(std::string_view percorso) override;
  std::optional<BatteryCharge> battery() override;
};

}  // namespace pellak::native
