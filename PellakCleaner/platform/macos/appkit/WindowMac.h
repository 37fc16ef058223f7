#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/DesktopHost.h"
#include "platform/macos/appkit/WebViewMac.h"

// For .mm files only.
namespace pellak::native {

/// The main window, which is all page. Closing hides it. Main thread.
class WindowMac {
 public:
  /// `eventi` outlives it.
  explicit WindowMac(DesktopEvents& eventi);
  ~WindowMac();
  WindowMac(const WindowMac&) = delete;
  WindowMac& operator=(const WindowMac&) = delete;

  void open(const WindowPlan& piano, const std::vector<std::string>& canali);
  /// In front, with the keyboard.
  void present();
  void close();
  void setCloseHides(bool nasconde);
  bool visible() const;

  /// The page's view; null before `open`.
  WebViewMac* page() const;

 private:
  struct Parts;

  DesktopEvents& eventi_;
  std::unique_ptr<Parts> parts_;
};

}  // namespace pellak::native
