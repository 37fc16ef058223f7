#pragma once

#include <memory>
#include <string>

#include "platform/DesktopHost.h"
#include "platform/KeepAwake.h"
#include "platform/Result.h"

namespace pellak {

/// The back ends that only a program with a window needs. They live as long as the `Desktop` that
/// made them.
class Desktop {
 public:
  virtual ~Desktop() = default;

  virtual DesktopHost& host() = 0;
  virtual KeepAwake& keepAwake() = 0;

  /// The shell command that starts the program anew, from its executable file.
  virtual std::string startCommand(const std::string& executable) const = 0;
};

/// Connects to the user's desktop; `executable` is the running program's file. Main thread.
///
/// Errors: missing (no display, or none that can be reached), exists (the program already runs for
/// this user: its window was asked to the front, and this start should end), failed (the part of
/// the program that shows windows can't be loaded; the text tells why).
Result<std::unique_ptr<Desktop>> openDesktop(const std::string& executable);

}  // namespace pellak
