#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/FileManager.h"
#include "platform/ProcessLauncher.h"

namespace pellak::native {

/// Shows items through the file manager's interface on the user's message bus
/// (org.freedesktop.FileManager1); without a bus, or when nobody answers there, opens the folders
/// that hold them. Opens items with xdg-open, the Trash by its address or, where no file
/// manager knows that, as a folder. Waits about a second for it to say that it can't,
/// never for the application.
class FileManagerLinux final : public FileManager {
 public:
  /// `launcher` outlives it.
  explicit FileManagerLinux(ProcessLauncher& launcher) : launcher_(launcher) {}

  Result<void> show(std::span<const std::string> percorsi) override;
  Result<void> open(std::string_view percorso) override;
  Result<void> openTrash() override;

 private:
  ProcessLauncher& launcher_;
};

}  // namespace pellak::native
