#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Applications.h"

namespace pellak::native {

/// The applications of the desktop's ".desktop" files, with their icons from the icon theme.
/// Nothing is read before the first request; what was read is kept until a folder of entries
/// changes.
class ApplicationsLinux final : public Applications {
 public:
  ApplicationsLinux();
  ~ApplicationsLinux() override;

  std::optional<ApplicationInfo> find(std::string_view chiave) override;
  bool running(const ApplicationInfo& app) override;
  bool quit(const ApplicationInfo& app) override;
  Result<std::string> iconPng(std::string_view chiave) override;

 private:
  struct Installed;

  std::shared_ptr<Installed> installed();
  std::vector<int> processesOf(const ApplicationInfo& app);

  std::mutex lock_;
  std::shared_ptr<Installed> installed_;
};

}  // namespace pellak::native
