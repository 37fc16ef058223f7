#pragma once

#include <string>
#include <utility>

#include "platform/SystemProbe.h"

namespace pellak::native {

/// What /proc and /sys tell. Every call reads anew.
class SystemProbeLinux final : public SystemProbe {
 public:
  /// The folders are other ones in tests only.
  explicit SystemProbeLinux(std::string proc = "/proc", std::string sys = "/sys")
      : proc_(std::move(proc)), sys_(std::move(sys)) {}

  std::vector<CoreTicks> cores() override;
  std::optional<NetBytes> network() override;
  std::optional<double> load() override;
  std::optional<MemoryUse> memory() override;
  std::optional<DiskSpace> disk(std::string_view percorso) override;
  std::optional<BatteryCharge> battery() override;

 private:
  const std::string proc_;
  const std::string sys_;
};

}  // namespace pellak::native
