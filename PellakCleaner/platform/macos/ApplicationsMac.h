#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Applications.h"

namespace pellak::native {

/// Application bundles as the workspace and the launch services know them.
class ApplicationsMac final : public Applications {
 public:
  std::optional<ApplicationInfo> find(std::string_view chiave) override;
  bool running(const ApplicationInfo& app) override;
  bool quit(const ApplicationInfo& app) override;
  Result<std::string> iconPng(std::string_view chiave) override;
};

}  // namespace pellak::native
