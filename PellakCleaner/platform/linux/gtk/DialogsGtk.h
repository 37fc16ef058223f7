#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/DesktopHost.h"

using GtkWidget = struct _GtkWidget;
using GtkWindow = struct _GtkWindow;

namespace pellak::native {

/// The dialogs of the desktop. None blocks the loop; each answers once, when it closes. Main
/// thread.
class DialogsGtk {
 public:
  DialogsGtk();
  ~DialogsGtk();
  DialogsGtk(const DialogsGtk&) = delete;
  DialogsGtk& operator=(const DialogsGtk&) = delete;

  /// Closing without a choice, by the Escape key for example, counts as the last button.
  void alert(GtkWindow* parent, const AlertPlan& avviso, std::function<void(std::size_t)> scelto);
  void chooseFolders(GtkWindow* parent, const std::string& pulsante, const std::string& messaggio,
                     std::function<void(std::vector<std::string>)> scelte);
  /// One at most; showing it again brings it to the front.
  void showAbout(GtkWindow* parent, const AboutPlan& informazioni);

 private:
  struct Open;

  Open& keep(std::unique_ptr<Open> dialog);
  static void onAlert(void* dialog, int response, void* open);
  static void onFolders(void* chooser, int response, void* open);
  static void onAbout(GtkWidget* window, int response, void* self);
  void forget(const Open* dialog);

  std::vector<std::unique_ptr<Open>> aperti_;
  GtkWidget* about_ = nullptr;
  std::string supporto_;
};

}  // namespace pellak::native
