#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace pellak {

/// Keeps the display from sleeping as long as it is asked to. Main thread.
class KeepAwake {
 public:
  virtual ~KeepAwake() = default;

  /// Begins; `motivo` is what the system may show of it. Nothing when the system refuses or has no
  /// such service.
  virtual std::optional<std::uint32_t> acquire(const std::string& motivo) = 0;

  /// Ends what `acquire` began.
  virtual void release(std::uint32_t id) = 0;
};

}  // namespace pellak
