#include "platform/macos/appkit/DesktopHostMac.h"

#import <AppKit/AppKit.h>
#include <utility>

#include "platform/macos/appkit/AboutWindowMac.h"
#include "platform/macos/appkit/ApplicationMac.h"
#include "platform/macos/appkit/DialogsMac.h"
#include "platform/macos/appkit/MainMenuMac.h"
#include "platform/macos/appkit/StatusItemMac.h"
#include "platform/macos/appkit/WindowMac.h"

namespace pellak::native {

struct DesktopHostMac::Parts {
  explicit Parts(DesktopEvents& eventi) : menu(eventi), window(eventi), status(eventi) {}

  /// Held here: the application does not keep its delegate.
  PellakApplicationDelegate* delegate = nil;
  MainMenuMac menu;
  WindowMac window;
  AboutWindowMac about;
  StatusItemMac status;
};

namespace {

PellakApplicationDelegate* delegateFor(DesktopEvents* eventi, MainLoop::Task pronto) {
  PellakApplicationDelegate* delegate = [[PellakApplicationDelegate alloc] init];
  delegate.onLaunched = ^{
    pronto();
  };
  delegate.onReopened = ^{
    eventi->reopened();
  };
  delegate.onActivated = ^{
    eventi->activated();
  };
  return delegate;
}

}  // namespace

DesktopHostMac::DesktopHostMac() { [PellakApplication sharedApplication]; }
DesktopHostMac::~DesktopHostMac() = default;

int DesktopHostMac::run(DesktopEvents& eventi, Task pronto) {
  @autoreleasepool {
    PellakApplication* application = static_cast<PellakApplication*>(NSApp);
    DesktopEvents* told = &eventi;
    parts_ = std::make_unique<Parts>(eventi);
    parts_->delegate = delegateFor(told, std::move(pronto));
    application.delegate = parts_->delegate;
    application.onTerminate = ^{
      told->menuChosen(MenuAction::quit);
    };
    setRegular(true);
    const int stato = loop_.run();
    application.onTerminate = nil;
    application.delegate = nil;
    parts_.reset();
    return stato;
  }
}

void DesktopHostMac::setMainMenu(const std::vector<MenuEntry>& voci) {
  if (parts_) parts_->menu.set(voci);
}

void DesktopHostMac::openWindow(const WindowPlan& finestra,
                                const std::vector<std::string>& canali) {
  if (parts_) parts_->window.open(finestra, canali);
}

void DesktopHostMac::loadHtml(const std::string& testo) {
  if (parts_ && parts_->window.page() != nullptr) parts_->window.page()->loadHtml(testo);
}

void DesktopHostMac::loadFile(const std::string& percorso, const std::string& cartella) {
  if (parts_ && parts_->window.page() != nullptr) {
    parts_->window.page()->loadFile(percorso, cartella);
  }
}

void DesktopHostMac::evaluate(const std::string& script) {
  if (parts_ && parts_->window.page() != nullptr) parts_->window.page()->evaluate(script);
}

void DesktopHostMac::callAsync(const std::string& corpo,
                               std::function<void(Result<std::string>)> fatto) {
  if (parts_ && parts_->window.page() != nullptr) {
    parts_->window.page()->callAsync(corpo, std::move(fatto));
  } else {
    fatto(Error{ErrorKind::missing, 0, "no page"});
  }
}

void DesktopHostMac::presentWindow() {
  if (parts_) parts_->window.present();
}

void DesktopHostMac::closeWindow() {
  if (parts_) parts_->window.close();
}

void DesktopHostMac::setCloseHides(bool nasconde) {
  if (parts_) parts_->window.setCloseHides(nasconde);
}

bool DesktopHostMac::windowVisible() const { return parts_ && parts_->window.visible(); }

void DesktopHostMac::setRegular(bool regolare) {
  const NSApplicationActivationPolicy wanted =
      regolare ? NSApplicationActivationPolicyRegular : NSApplicationActivationPolicyAccessory;
  if (NSApp.activationPolicy != wanted) [NSApp setActivationPolicy:wanted];
}

void DesktopHostMac::alert(const AlertPlan& avviso, std::function<void(std::size_t)> scelto) {
  if (parts_) native::showAlert(avviso, std::move(scelto));
}

void DesktopHostMac::chooseFolders(const std::string& pulsante, const std::string& messaggio,
                                   std::function<void(std::vector<std::string>)> scelte) {
  if (parts_) native::chooseFolders(pulsante, messaggio, std::move(scelte));
}

void DesktopHostMac::showAbout(const AboutPlan& informazioni) {
  if (parts_) parts_->about.show(informazioni);
}

bool DesktopHostMac::setStatusMenu(const std::vector<StatRow>& letture,
                                   const std::vector<MenuEntry>& voci) {
  if (parts_) parts_->status.setMenu(letture, voci);
  return parts_ != nullptr;
}

void DesktopHostMac::setStatusImage(const std::string& percorso, const std::string& lettera) {
  if (parts_) parts_->status.setImage(percorso, lettera);
}

void DesktopHostMac::setStatusTitle(const std::string& testo) {
  if (parts_) parts_->status.setTitle(testo);
}

}  // namespace pellak::native
