#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/DesktopHost.h"

namespace pellak::native {

/// The item in the desktop's status area, by the StatusNotifierItem convention. It comes when the
/// desktop has somebody who shows such items, also later than the application. Main thread.
class StatusItemGtk {
 public:
  /// `eventi` outlives it.
  explicit StatusItemGtk(DesktopEvents& eventi);
  ~StatusItemGtk();
  StatusItemGtk(const StatusItemGtk&) = delete;
  StatusItemGtk& operator=(const StatusItemGtk&) = delete;

  /// Whether somebody shows the item. The first call waits for the answer, at most a moment; from
  /// then on it is known.
  bool setMenu(const std::vector<StatRow>& letture, const std::vector<MenuEntry>& voci);
  void setImage(const std::string& percorso, const std::string& lettera);
  void setTitle(const std::string& testo);

 private:
  struct Parts;

  std::unique_ptr<Parts> parts_;
};

}  // namespace pellak::native
