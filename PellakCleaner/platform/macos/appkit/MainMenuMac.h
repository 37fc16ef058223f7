#pragma once

#include <memory>
#include <vector>

#include "platform/DesktopHost.h"

// For .mm files only.
namespace pellak::native {

/// The menu bar: the application's menu, and those without which the keys for copying, pasting and
/// closing would do nothing. Main thread.
class MainMenuMac {
 public:
  /// `eventi` outlives it.
  explicit MainMenuMac(DesktopEvents& eventi);
  ~MainMenuMac();
  MainMenuMac(const MainMenuMac&) = delete;
  MainMenuMac& operator=(const MainMenuMac&) = delete;

  /// The entries of the application's menu; the system's own for hiding come before the last one.
  void set(const std::vector<MenuEntry>& voci);

 private:
  struct Parts;

  std::unique_ptr<Parts> parts_;
};

}  // namespace pellak::native
