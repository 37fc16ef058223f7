#pragma once

#include <memory>

#include "platform/DesktopHost.h"

// For .mm files only.
namespace pellak::native {

/// The window that says what this is. One at most; showing it again brings it to the front. Main
/// thread.
class AboutWindowMac {
 public:
  AboutWindowMac();
  ~AboutWindowMac();
  AboutWindowMac(const AboutWindowMac&) = delete;
  AboutWindowMac& operator=(const AboutWindowMac&) = delete;

  void show(const AboutPlan& informazioni);

 private:
  struct Parts;

  std::unique_ptr<Parts> parts_;
};

}  // namespace pellak::native
