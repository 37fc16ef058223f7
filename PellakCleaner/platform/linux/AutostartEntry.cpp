#include "platform/linux/AutostartEntry.h"

#include <cstdlib>
#include <string_view>

namespace pellak::native {
namespace {

std::string configFolder(const std::string& home) {
  const char* named = std::getenv("XDG_CONFIG_HOME");
  return named != nullptr && *named == '/' ? std::string(named) : home + "/.config";
}

/// One argument of an Exec line. It is quoted as an argument first, and the whole is a text value
/// in which a backslash is written twice.
std::string execArgument(const std::string& argument) {
  std::string quoted = "\"";
  for (const char sign : argument) {
    if (sign == '\\') {
      quoted += R"(\\\\)";
    } else if (std::string_view("\"`$").find(sign) != std::string_view::npos) {
      quoted += R"(\\)";
      quoted += sign;
    } else if (sign == '%') {
      quoted += "%%";
    } else {
      quoted += sign;
    }
  }
  return quoted + "\"";
}

}  // namespace

LoginEntry autostartEntry(const std::string& executable, const std::string& home) {
  return {configFolder(home) + "/autostart/com.pellaklab.cleaner.desktop",
          "[Desktop Entry]\n"
          "Type=Application\n"
          "Name=Pellak Cleaner\n"
          "Icon=pellak-cleaner\n"
          "Exec=" +
              execArgument(executable) + "\n"};
}

}  // namespace pellak::native
