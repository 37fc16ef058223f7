#pragma once

#include <span>
#include <string>
#include <string_view>

#include "platform/FileManager.h"

namespace pellak::native {

/// Finder and the default applications, through the workspace.
class FileManagerMac final : public FileManager {
 public:
  Result<void> show(std::span<const std::string> percorsi) override;
  Result<void> open(std::string_view percorso) override;
  Result<void> openTrash() override;
};

}  // namespace pellak::native
