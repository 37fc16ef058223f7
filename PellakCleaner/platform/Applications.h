#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Result.h"

namespace pellak {

/// One installed application.
struct ApplicationInfo {
  std::string id;          ///< bundle identifier, or desktop file name without ".desktop"
  std::string name;        ///< as the system shows it
  std::string path;        ///< the ".app" folder, or the ".desktop" file
  std::string executable;  ///< program it starts; empty when unknown
};

/// The installed applications of the system. Any thread.
class Applications {
 public:
  virtual ~Applications() = default;

  /// By identifier, path or shown name, in this order of preference.
  virtual std::optional<ApplicationInfo> find(std::string_view chiave) = 0;

  /// Whether a process of the application runs for this user.
  virtual bool running(const ApplicationInfo& app) = 0;

  /// Asks the application's processes to end and waits a few seconds for it; whether none runs any
  /// more. Nothing is forced: an application may stay because of unsaved documents.
  virtual bool quit(const ApplicationInfo& app) = 0;

  /// The application's icon as a PNG file of about 64 points. Errors: missing when there is no
  /// such application or it has no icon that can be read.
  virtual Result<std::string> iconPng(std::string_view chiave) = 0;
};

}  // namespace pellak
