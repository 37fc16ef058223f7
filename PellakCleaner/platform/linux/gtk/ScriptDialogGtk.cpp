#include "platform/linux/gtk/ScriptDialogGtk.h"

#include <memory>
#include <webkit2/webkit2.h>

namespace pellak::native {
namespace {

/// Keeps the script waiting as long as it lives.
class Question {
 public:
  explicit Question(WebKitScriptDialog* dialog) : dialog_(webkit_script_dialog_ref(dialog)) {}
  /// Not at once: WebKit can't bear it while it still hands the question over.
  ~Question() { g_idle_add_full(G_PRIORITY_DEFAULT, closeNow, dialog_, nullptr); }
  Question(const Question&) = delete;
  Question& operator=(const Question&) = delete;

  void confirm(bool yes) { webkit_script_dialog_confirm_set_confirmed(dialog_, yes ? 1 : 0); }

 private:
  static int closeNow(void* raw) {
    auto* dialog = static_cast<WebKitScriptDialog*>(raw);
    webkit_script_dialog_close(dialog);
    webkit_script_dialog_unref(dialog);
    return G_SOURCE_REMOVE;
  }

  WebKitScriptDialog* dialog_;
};

}  // namespace

bool answerLater(WebKitScriptDialog* dialog, DesktopEvents& eventi) {
  const char* message = webkit_script_dialog_get_message(dialog);
  const std::string testo(message == nullptr ? "" : message);
  // Shared by the copies of one answer; empty once it was given.
  const auto open = [&] {
    return std::make_shared<std::unique_ptr<Question>>(std::make_unique<Question>(dialog));
  };
  switch (webkit_script_dialog_get_dialog_type(dialog)) {
    case WEBKIT_SCRIPT_DIALOG_ALERT:
      eventi.scriptAlert(testo, [question = open()] { question->reset(); });
      return true;
    case WEBKIT_SCRIPT_DIALOG_CONFIRM:
      eventi.scriptConfirm(testo, [question = open()](bool yes) {
        if (*question != nullptr) (*question)->confirm(yes);
        question->reset();
      });
      return true;
    default:
      open();
      return true;
  }
}

}  // namespace pellak::native
