#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/DesktopHost.h"

@class NSView;

// For .mm files only.
namespace pellak::native {

/// The view that shows our page and nothing else: it can't be led away from it, opens no further
/// window, loads and keeps nothing on disk. Main thread.
class WebViewMac {
 public:
  /// `eventi` outlives it.
  WebViewMac(DesktopEvents& eventi, const std::vector<std::string>& canali);
  ~WebViewMac();
  WebViewMac(const WebViewMac&) = delete;
  WebViewMac& operator=(const WebViewMac&) = delete;

  NSView* view() const;

  void loadHtml(const std::string& testo);
  void loadFile(const std::string& percorso, const std::string& cartella);
  void evaluate(const std::string& script);
  void callAsync(const std::string& corpo, std::function<void(Result<std::string>)> fatto);

 private:
  struct Parts;

  std::unique_ptr<Parts> parts_;
};

}  // namespace pellak::native
