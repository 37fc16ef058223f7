#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/DesktopHost.h"
#include "platform/linux/gtk/MenuGtk.h"
#include "platform/linux/gtk/WebViewGtk.h"

using GtkWidget = struct _GtkWidget;
using GtkWindow = struct _GtkWindow;

namespace pellak::native {

/// The main window: a header bar with the main menu above the page. Closing hides it. Main thread.
class WindowGtk {
 public:
  /// `eventi` outlives it.
  explicit WindowGtk(DesktopEvents& eventi);
  ~WindowGtk();
  WindowGtk(const WindowGtk&) = delete;
  WindowGtk& operator=(const WindowGtk&) = delete;

  void setMenu(const std::vector<MenuEntry>& voci) { menu_.set({}, voci); }
  /// The content starts in the size asked for, as far as the screen has room.
  void open(const WindowPlan& piano, const std::vector<std::string>& canali);
  /// In front, with the keyboard. `token` is what the desktop gave for that; may be empty.
  void present(const std::string& token);
  void close();
  void setCloseHides(bool nasconde) { nasconde_ = nasconde; }
  bool visible() const;

  /// The page's view; null before `open`.
  WebViewGtk* page() const { return page_.get(); }
  /// What dialogs belong to; null while it can't be seen.
  GtkWindow* parent() const;

 private:
  struct Handlers;

  GtkWidget* headerBar(const std::string& titolo);
  void connect();

  DesktopEvents& eventi_;
  MenuGtk menu_;
  std::unique_ptr<WebViewGtk> page_;
  GtkWidget* window_ = nullptr;
  bool nasconde_ = true;
  bool ridotta_ = false;        ///< minimised, by whomever
  bool chiusaRidotta_ = false;  ///< closing has minimised it, nobody brought it back yet
};

}  // namespace pellak::native
