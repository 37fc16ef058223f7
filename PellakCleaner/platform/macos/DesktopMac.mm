#import <AppKit/AppKit.h>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/Desktop.h"
#include "platform/macos/KeepAwakeMac.h"
#include "platform/macos/RunningCopy.h"
#include "platform/macos/appkit/DesktopHostMac.h"

namespace pellak {
namespace {

/// The session that has a screen; a terminal from afar is in none.
bool inScreenSession() {
  const CFDictionaryRef session = CGSessionCopyCurrentDictionary();
  if (session == nullptr) return false;
  CFRelease(session);
  return true;
}

/// One word for a shell, whatever it holds.
std::string quoted(const std::string& text) {
  constexpr std::string_view kSpecial = "\\\"$`";
  std::string word = "\"";
  for (const char sign : text) {
    if (kSpecial.find(sign) != std::string_view::npos) word += '\\';
    word += sign;
  }
  return word + "\"";
}

/// The nearest application bundle above a file; empty when it lies in none. Not the one the system
/// tells: of a program started through a link it knows none.
std::string bundleAround(std::string percorso) {
  constexpr std::string_view kEnding = ".app";
  for (;;) {
    const std::size_t slash = percorso.rfind('/');
    if (slash == std::string::npos || slash == 0) return {};
    percorso.resize(slash);
    if (percorso.ends_with(kEnding) && !percorso.ends_with("/.app")) return percorso;
  }
}

class DesktopMac final : public Desktop {
 public:
  DesktopHost& host() override { return host_; }
  KeepAwake& keepAwake() override { return keepAwake_; }

  std::string startCommand(const std::string& executable) const override {
    const std::string bundle = bundleAround(executable);
    return bundle.empty() ? "exec " + quoted(executable) : "open " + quoted(bundle);
  }

 private:
  native::KeepAwakeMac keepAwake_;
  native::DesktopHostMac host_;
};

}  // namespace

Result<std::unique_ptr<Desktop>> openDesktop(const std::string& executable) {
  @autoreleasepool {
    if (!inScreenSession()) return Error{ErrorKind::missing, 0, "no screen"};
    if (native::showRunningCopy(bundleAround(executable)))
      return Error{ErrorKind::exists, 0, "already running"};
    return std::unique_ptr<Desktop>(std::make_unique<DesktopMac>());
  }
}

}  // namespace pellak
