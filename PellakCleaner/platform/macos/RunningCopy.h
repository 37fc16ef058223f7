#pragma once

#include <string>

// For .mm files only.
namespace pellak::native {

/// Whether the application already runs for this user, as another process of a bundle of the same
/// identifier as `bundle`, which was asked to show its window. False when there is none, when
/// `bundle` is empty, and when the other one does not answer within a few seconds. Main thread.
bool showRunningCopy(const std::string& bundle);

}  // namespace pellak::native
