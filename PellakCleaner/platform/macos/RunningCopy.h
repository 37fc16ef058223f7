#pragma once

// For .mm files only.
namespace pellak::native {

/// Whether the application already runs for this user, as another process of the same bundle, which
/// was asked to show its window. False when there is none, when this program is not in a bundle,
/// and when the other one does not answer within a few seconds. Main thread.
bool showRunningCopy();

}  // namespace pellak::native
