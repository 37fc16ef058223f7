#include "platform/linux/gtk/StatusItemGtk.h"

#include <gtk/gtk.h>
#include <libayatana-appindicator/app-indicator.h>
#include <optional>
#include <unistd.h>

#include "platform/linux/GlibPtr.h"
#include "platform/linux/gtk/MenuGtk.h"
#include "platform/linux/gtk/StatusWatcher.h"

namespace pellak::native {
namespace {

constexpr const char* kId = "pellak-cleaner";
constexpr const char* kThemeIcon = "pellak-cleaner";
constexpr const char* kName = "Pellak Cleaner";

/// The host looks an image up by its name in the folder it lies in.
struct Image {
  std::string cartella;
  std::string nome;
};

std::optional<Image> readableImage(const std::string& percorso) {
  if (percorso.empty() || percorso[0] != '/' || ::access(percorso.c_str(), R_OK) != 0) return {};
  const std::size_t slash = percorso.rfind('/');
  const std::string file = percorso.substr(slash + 1);
  return Image{percorso.substr(0, slash), file.substr(0, file.rfind('.'))};
}

}  // namespace

struct StatusItemGtk::Parts {
  explicit Parts(DesktopEvents& events)
      : eventi(events), menu([this](MenuAction azione) { eventi.menuChosen(azione); }) {}
  ~Parts() {
    if (root != nullptr) g_signal_handlers_disconnect_by_data(root.get(), &eventi);
  }
  Parts(const Parts&) = delete;
  Parts& operator=(const Parts&) = delete;

  void create();
  void showImage() const;
  void showTitle() const;
  void listenToOpening();

  DesktopEvents& eventi;
  MenuGtk menu;
  std::optional<StatusWatcher> watcher;
  GlibObject<AppIndicator> indicator;
  GlibObject<GObject> root;  ///< of the menu as it is exported
  std::string immagine;
  std::string lettera;
  std::string titolo;
};

namespace {

/// The host is about to show the menu. False: nothing more to wait for.
int onAboutToShow(GObject* /*root*/, void* raw) {
  static_cast<DesktopEvents*>(raw)->menuWillOpen();
  return 0;
}

/// The indicator uses the process's common connection, whose end would end the process.
void outliveTheBus() {
  const BusConnection common(g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr));
  if (common != nullptr) g_dbus_connection_set_exit_on_close(common.get(), 0);
}

}  // namespace

void StatusItemGtk::Parts::create() {
  if (indicator != nullptr || !watcher || !watcher->present()) return;
  outliveTheBus();
  indicator.reset(app_indicator_new(kId, kThemeIcon, APP_INDICATOR_CATEGORY_APPLICATION_STATUS));
  app_indicator_set_title(indicator.get(), kName);
  showImage();
  showTitle();
  app_indicator_set_menu(indicator.get(), GTK_MENU(menu.widget()));
  app_indicator_set_status(indicator.get(), APP_INDICATOR_STATUS_ACTIVE);
  listenToOpening();
}

void StatusItemGtk::Parts::listenToOpening() {
  GObject* server = nullptr;
  g_object_get(indicator.get(), "dbus-menu-server", &server, nullptr);
  const GlibObject<GObject> owned(server);
  if (owned == nullptr) return;
  GObject* node = nullptr;
  g_object_get(server, "root-node", &node, nullptr);
  root.reset(node);
  if (root != nullptr) {
    g_signal_connect(node, "about-to-show", G_CALLBACK(onAboutToShow), &eventi);
  }
}

void StatusItemGtk::Parts::showImage() const {
  if (indicator == nullptr) return;
  if (const auto image = readableImage(immagine)) {
    app_indicator_set_icon_theme_path(indicator.get(), image->cartella.c_str());
    app_indicator_set_icon_full(indicator.get(), image->nome.c_str(), kName);
  } else {
    app_indicator_set_icon_full(indicator.get(), kThemeIcon, kName);
  }
}

void StatusItemGtk::Parts::showTitle() const {
  if (indicator == nullptr) return;
  const bool soloLettera = titolo.empty() && !readableImage(immagine);
  const std::string& testo = soloLettera ? lettera : titolo;
  app_indicator_set_label(indicator.get(), testo.c_str(), testo.c_str());
}

StatusItemGtk::StatusItemGtk(DesktopEvents& eventi) : parts_(std::make_unique<Parts>(eventi)) {}
StatusItemGtk::~StatusItemGtk() = default;

bool StatusItemGtk::setMenu(const std::vector<StatRow>& letture,
                            const std::vector<MenuEntry>& voci) {
  parts_->menu.set(letture, voci);
  if (!parts_->watcher) parts_->watcher.emplace([this] { parts_->create(); });
  parts_->create();
  return parts_->watcher->present();
}

void StatusItemGtk::setImage(const std::string& percorso, const std::string& lettera) {
  parts_->immagine = percorso;
  parts_->lettera = lettera;
  parts_->showImage();
  parts_->showTitle();
}

void StatusItemGtk::setTitle(const std::string& testo) {
  parts_->titolo = testo;
  parts_->showTitle();
}

}  // namespace pellak::native
