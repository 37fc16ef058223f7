#pragma once

#include <string>

#include "platform/Result.h"

namespace pellak {

/// The desktop's notifications. Any thread.
class Notifier {
 public:
  virtual ~Notifier() = default;

  /// Shows a message; returns when the system has taken it. Errors: missing (no such service),
  /// failed.
  virtual Result<void> notify(const std::string& titolo, const std::string& messaggio) = 0;
};

}  // namespace pellak
