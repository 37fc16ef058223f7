#include "platform/linux/WindowModule.h"

#include "platform/linux/gtk/DesktopHostGtk.h"

extern "C" __attribute__((visibility("default"))) bool pellakConnectWindow(
    pellak::native::SingleInstance& istanza, std::unique_ptr<pellak::DesktopHost>& host) {
  auto connected = pellak::native::DesktopHostGtk::connect(istanza);
  if (!connected) return false;
  host = std::move(*connected);
  return true;
}
