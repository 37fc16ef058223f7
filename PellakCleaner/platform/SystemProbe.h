#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pellak {

/// Time that one processor core has spent since the start of the system, in the system's ticks.
struct CoreTicks {
  double busy = 0;
  double total = 0;
};

/// Bytes that all real network interfaces have carried since the start of the system.
struct NetBytes {
  double rx = 0;
  double tx = 0;
};

struct MemoryUse {
  std::int64_t used = 0;
  std::int64_t total = 0;
};

struct DiskSpace {
  std::int64_t free = 0;  ///< what the user can still write
  std::int64_t total = 0;
  std::int64_t used = 0;  ///< what is written; the volume may keep the rest from the user
};

struct BatteryCharge {
  double fraction = 0;  ///< 0 to 1
  bool charging = false;
  std::optional<int> minutesToFull;  ///< while charging, when the system can tell
};

/// What the system tells about itself at this moment; nothing where it does not. Any thread.
class SystemProbe {
 public:
  virtual ~SystemProbe() = default;

  /// One entry for each core; empty when not known.
  virtual std::vector<CoreTicks> cores() = 0;
  virtual std::optional<NetBytes> network() = 0;
  /// Load average of the last minute.
  virtual std::optional<double> load() = 0;
  virtual std::optional<MemoryUse> memory() = 0;
  /// Of the volume that a path lies on.
  virtual std::optional<DiskSpace> disk(std::string_view percorso) = 0;
  virtual std::optional<BatteryCharge> battery() = 0;
};

}  // namespace pellak
