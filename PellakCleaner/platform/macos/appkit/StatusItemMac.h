#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/DesktopHost.h"

// For .mm files only.
namespace pellak::native {

/// The item in the system's status bar, there from the first menu on. Main thread.
class StatusItemMac {
 public:
  /// `eventi` outlives it.
  explicit StatusItemMac(DesktopEvents& eventi);
  ~StatusItemMac();
  StatusItemMac(const StatusItemMac&) = delete;
  StatusItemMac& operator=(const StatusItemMac&) = delete;

  void setMenu(const std::vector<StatRow>& letture, const std::vector<MenuEntry>& voci);
  void setImage(const std::string& percorso, const std::string& lettera);
  void setTitle(const std::string& testo);

 private:
  struct Parts;

  std::unique_ptr<Parts> parts_;
};

}  // namespace pellak::native
