#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/DesktopHost.h"

using GtkWidget = struct _GtkWidget;
using GtkMenuShell = struct _GtkMenuShell;
using GtkAccelGroup = struct _GtkAccelGroup;

namespace pellak::native {

/// A GTK menu with readings above and entries below them. Main thread.
class MenuGtk {
 public:
  /// `scelta` is called with what the user picks. Key equivalents work in windows that have
  /// `tasti`.
  explicit MenuGtk(std::function<void(MenuAction)> scelta);
  ~MenuGtk();
  MenuGtk(const MenuGtk&) = delete;
  MenuGtk& operator=(const MenuGtk&) = delete;

  /// Shows these entries from now on. As long as only titles change the items stay the same, so
  /// that an open menu follows without closing.
  void set(const std::vector<StatRow>& letture, const std::vector<MenuEntry>& voci);

  /// The menu; stays the same.
  GtkWidget* widget() const { return menu_; }
  GtkAccelGroup* tasti() const { return tasti_; }

 private:
  struct Item;

  static void onActivate(GtkWidget* widget, void* item);
  void fill(GtkMenuShell* into, const std::vector<MenuEntry>& voci);
  void add(GtkMenuShell* into, const MenuEntry& voce);
  void addReading(const std::string& testo);
  void rename(const std::vector<StatRow>& letture, const std::vector<MenuEntry>& voci);

  std::function<void(MenuAction)> scelta_;
  GtkWidget* menu_;
  GtkAccelGroup* tasti_;
  std::string forma_;  ///< of what is shown, without its titles
  std::vector<std::unique_ptr<Item>> items_;
};

/// A reading as one line of text: title, value, detail, and bars drawn with block characters.
std::string readingText(const StatRow& lettura);

}  // namespace pellak::native
