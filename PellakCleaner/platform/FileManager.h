#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/Result.h"

namespace pellak {

/// The desktop's file manager and its default applications. Any thread; calls may take seconds
/// while a program starts.
class FileManager {
 public:
  virtual ~FileManager() = default;

  /// Shows the items selected in the file manager. Paths are bytes, absolute. Errors: failed
  /// when no way to show them is there.
  virtual Result<void> show(std::span<const std::string> percorsi) = 0;

  /// Opens the item with its default application and does not wait for it.
  virtual Result<void> open(std::string_view percorso) = 0;

  /// Opens the user's Trash in the file manager. Errors: failed when no way to show it is there.
  virtual Result<void> openTrash() = 0;
};

}  // namespace pellak
