#pragma once

#include "platform/DesktopHost.h"

using WebKitScriptDialog = struct _WebKitScriptDialog;

namespace pellak::native {

/// Hands a dialog of the page's script to `eventi`, which answers when the user has; the script
/// waits so long. An answer that is dropped counts as a refusal. Questions that the page has no use
/// for are closed at once. True when the dialog is taken care of.
bool answerLater(WebKitScriptDialog* dialog, DesktopEvents& eventi);

}  // namespace pellak::native
