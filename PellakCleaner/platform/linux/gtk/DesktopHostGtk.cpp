#include "platform/linux/gtk/DesktopHostGtk.h"

#include <clocale>
#include <gtk/gtk.h>
#include <utility>

#include "platform/linux/GlibPtr.h"
#include "platform/linux/SessionBus.h"
#include "platform/linux/gtk/ColourSchemeGtk.h"
#include "platform/linux/gtk/DialogsGtk.h"
#include "platform/linux/gtk/StatusItemGtk.h"
#include "platform/linux/gtk/WindowGtk.h"

namespace pellak::native {

namespace {

/// The desktop finds the application's entry in its menus by the first name.
void introduce() {
  g_set_prgname(SingleInstance::kName);
  static const bool once = [] {
    g_set_application_name("Pellak Cleaner");
    return true;
  }();
  static_cast<void>(once);
}

/// Otherwise accessibility bridge and settings store wait for one and complain.
void doWithoutBus() {
  g_setenv("NO_AT_BRIDGE", "1", 0);
  g_setenv("GSETTINGS_BACKEND", "memory", 0);
}

/// A program that is not installed has its icons beside it.
void findIcons() {
  const GlibText program(g_file_read_link("/proc/self/exe", nullptr));
  if (program == nullptr) return;
  const GlibText folder(g_path_get_dirname(program.get()));
  const GlibText icons(g_build_filename(folder.get(), "icons", nullptr));
  gtk_icon_theme_append_search_path(gtk_icon_theme_get_default(), icons.get());
}

}  // namespace

struct DesktopHostGtk::Parts {
  explicit Parts(DesktopEvents& eventi) : window(eventi), status(eventi) {}

  ColourSchemeGtk colours;
  WindowGtk window;
  DialogsGtk dialogs;
  StatusItemGtk status;
  std::string token;  ///< of the further start that is being answered
};

Result<std::unique_ptr<DesktopHostGtk>> DesktopHostGtk::connect(SingleInstance& istanza) {
  introduce();
  if (sessionBusAddress().empty()) doWithoutBus();
  if (gtk_init_check(nullptr, nullptr) == 0) {
    return Error{ErrorKind::missing, 0, "no display"};
  }
  // GTK takes over the user's locale; our numbers are written and read with a point.
  std::setlocale(LC_NUMERIC, "C");
  findIcons();
  gtk_window_set_default_icon_name("pellak-cleaner");
  return std::unique_ptr<DesktopHostGtk>(new DesktopHostGtk(istanza));
}

DesktopHostGtk::DesktopHostGtk(SingleInstance& istanza) : istanza_(istanza) {}
DesktopHostGtk::~DesktopHostGtk() = default;

int DesktopHostGtk::run(DesktopEvents& eventi, Task pronto) {
  parts_ = std::make_unique<Parts>(eventi);
  istanza_.onActivate([this, &eventi](const std::string& token) {
    parts_->token = token;
    eventi.reopened();
    parts_->token.clear();
  });
  const int stato = loop_.run(std::move(pronto));
  istanza_.onActivate({});
  parts_.reset();
  return stato;
}

void DesktopHostGtk::setMainMenu(const std::vector<MenuEntry>& voci) {
  if (parts_) parts_->window.setMenu(voci);
}

void DesktopHostGtk::openWindow(const WindowPlan& finestra,
                                const std::vector<std::string>& canali) {
  if (parts_) parts_->window.open(finestra, canali);
}

void DesktopHostGtk::loadHtml(const std::string& testo) {
  if (parts_ && parts_->window.page() != nullptr) parts_->window.page()->loadHtml(testo);
}

void DesktopHostGtk::loadFile(const std::string& percorso, const std::string& /*cartella*/) {
  if (parts_ && parts_->window.page() != nullptr) parts_->window.page()->loadFile(percorso);
}

void DesktopHostGtk::evaluate(const std::string& script) {
  if (parts_ && parts_->window.page() != nullptr) parts_->window.page()->evaluate(script);
}

void DesktopHostGtk::callAsync(const std::string& corpo,
                               std::function<void(Result<std::string>)> fatto) {
  if (parts_ && parts_->window.page() != nullptr) {
    parts_->window.page()->callAsync(corpo, std::move(fatto));
  } else {
    fatto(Error{ErrorKind::missing, 0, "no page"});
  }
}

void DesktopHostGtk::presentWindow() {
  if (parts_) parts_->window.present(parts_->token);
}

void DesktopHostGtk::closeWindow() {
  if (parts_) parts_->window.close();
}

void DesktopHostGtk::setCloseHides(bool nasconde) {
  if (parts_) parts_->window.setCloseHides(nasconde);
}

bool DesktopHostGtk::windowVisible() const { return parts_ && parts_->window.visible(); }

void DesktopHostGtk::alert(const AlertPlan& avviso, std::function<void(std::size_t)> scelto) {
  if (parts_) parts_->dialogs.alert(parts_->window.parent(), avviso, std::move(scelto));
}

void DesktopHostGtk::chooseFolders(const std::string& pulsante, const std::string& messaggio,
                                   std::function<void(std::vector<std::string>)> scelte) {
  if (!parts_) return;
  parts_->dialogs.chooseFolders(parts_->window.parent(), pulsante, messaggio, std::move(scelte));
}

void DesktopHostGtk::showAbout(const AboutPlan& informazioni) {
  if (parts_) parts_->dialogs.showAbout(parts_->window.parent(), informazioni);
}

bool DesktopHostGtk::setStatusMenu(const std::vector<StatRow>& letture,
                                   const std::vector<MenuEntry>& voci) {
  return parts_ && parts_->status.setMenu(letture, voci);
}

void DesktopHostGtk::setStatusImage(const std::string& percorso, const std::string& lettera) {
  if (parts_) parts_->status.setImage(percorso, lettera);
}

void DesktopHostGtk::setStatusTitle(const std::string& testo) {
  if (parts_) parts_->status.setTitle(testo);
}

}  // namespace pellak::native
