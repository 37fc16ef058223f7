#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/XdgFolders.h"

namespace pellak::native {

/// Finds icons by name: in the user's theme, in the themes it inherits from, in the common
/// fallback theme and last among the loose files. Themes are read at the first look-up and kept.
/// Any thread.
class IconThemeLinux {
 public:
  explicit IconThemeLinux(XdgFolders folders);

  /// The file that fits a square of `side` pixels best; empty when no theme has the name.
  std::string find(std::string_view name, int side);

 private:
  /// A folder of icons of one size or range of sizes, in pixels.
  struct Folder {
    std::string path;
    int smallest = 0;
    int largest = 0;
  };
  using Theme = std::vector<Folder>;

  void load();
  void addTheme(const std::string& name, std::vector<std::string>& pending);
  std::string findIn(const Theme& theme, const std::string& name, int side) const;

  const XdgFolders folders_;
  const std::vector<std::string> bases_;  ///< folders that hold themes
  std::mutex lock_;
  bool loaded_ = false;
  std::vector<Theme> themes_;  ///< most important first
};

}  // namespace pellak::native
