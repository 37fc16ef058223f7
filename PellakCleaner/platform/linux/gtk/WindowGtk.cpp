#include "platform/linux/gtk/WindowGtk.h"

#include <algorithm>
#include <gtk/gtk.h>
#include <gtk/gtkx.h>
#include <utility>

namespace pellak::native {
namespace {

/// The time of what the user just did; where the event does not tell, the display's own.
guint32 presentTime(GtkWidget* window) {
  const guint32 time = gtk_get_current_event_time();
  GdkWindow* surface = gtk_widget_get_window(window);
  if (time != GDK_CURRENT_TIME || surface == nullptr || !GDK_IS_X11_WINDOW(surface)) return time;
  return gdk_x11_get_server_time(surface);
}

struct Size {
  int larghezza;
  int altezza;
};

/// Of the content; the header bar comes on top of it.
Size roomOnScreen(Size wished, int headerHeight) {
  GdkDisplay* display = gdk_display_get_default();
  GdkMonitor* monitor = gdk_display_get_primary_monitor(display);
  if (monitor == nullptr) monitor = gdk_display_get_monitor(display, 0);
  if (monitor == nullptr) return wished;
  GdkRectangle area{};
  gdk_monitor_get_workarea(monitor, &area);
  return {std::min(wished.larghezza, area.width),
          std::min(wished.altezza, area.height - headerHeight)};
}

}  // namespace

/// What GTK calls.
struct WindowGtk::Handlers {
  static int onDelete(GtkWidget* /*window*/, GdkEvent* /*event*/, void* self) {
    static_cast<WindowGtk*>(self)->close();
    return 1;
  }

  static int onMenuKey(GtkAccelGroup* /*tasti*/, GObject* /*window*/, guint /*key*/,
                       GdkModifierType /*modifiers*/, void* button) {
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(button), 1);
    return 1;
  }

  static int onState(GtkWidget* /*window*/, GdkEventWindowState* event, void* raw) {
    auto* self = static_cast<WindowGtk*>(raw);
    if ((event->changed_mask & GDK_WINDOW_STATE_ICONIFIED) == 0) return 0;
    self->ridotta_ = (event->new_window_state & GDK_WINDOW_STATE_ICONIFIED) != 0;
    if (!self->ridotta_) broughtBack(*self);
    return 0;
  }

  static void onActive(GtkWidget* window, GParamSpec* /*property*/, void* raw) {
    auto* self = static_cast<WindowGtk*>(raw);
    if (gtk_window_is_active(GTK_WINDOW(window)) == 0) return;
    broughtBack(*self);
    self->eventi_.activated();
  }

  static int onCloseKey(GtkAccelGroup* /*tasti*/, GObject* /*window*/, guint /*key*/,
                        GdkModifierType /*modifiers*/, void* self) {
    static_cast<WindowGtk*>(self)->close();
    return 1;
  }

 private:
  static void broughtBack(WindowGtk& self) {
    if (std::exchange(self.chiusaRidotta_, false)) self.eventi_.reopened();
  }
};

WindowGtk::WindowGtk(DesktopEvents& eventi)
    : eventi_(eventi), menu_([&eventi](MenuAction azione) { eventi.menuChosen(azione); }) {}

WindowGtk::~WindowGtk() {
  if (window_ == nullptr) return;
  g_signal_handlers_disconnect_by_data(window_, this);
  page_.reset();
  gtk_widget_destroy(window_);
}

void WindowGtk::open(const WindowPlan& piano, const std::vector<std::string>& canali) {
  if (window_ != nullptr) return;
  window_ = gtk_window_new(GTK_WINDOW_TOPLEVEL);
  page_ = std::make_unique<WebViewGtk>(eventi_, canali);
  GtkWidget* header = headerBar(piano.titolo);
  gtk_window_set_title(GTK_WINDOW(window_), piano.titolo.c_str());
  gtk_window_set_titlebar(GTK_WINDOW(window_), header);
  gtk_window_set_position(GTK_WINDOW(window_), GTK_WIN_POS_CENTER);
  gtk_container_add(GTK_CONTAINER(window_), page_->widget());
  gtk_widget_set_size_request(page_->widget(), piano.minLarghezza, piano.minAltezza);
  connect();

  int headerHeight = 0;
  gtk_widget_show_all(header);
  gtk_widget_get_preferred_height(header, nullptr, &headerHeight);
  const Size size = roomOnScreen({piano.larghezza, piano.altezza}, headerHeight);
  gtk_window_set_default_size(GTK_WINDOW(window_), size.larghezza, size.altezza);
  gtk_widget_show_all(window_);
  present({});
}

void WindowGtk::connect() {
  g_signal_connect(window_, "delete-event", G_CALLBACK(Handlers::onDelete), this);
  g_signal_connect(window_, "window-state-event", G_CALLBACK(Handlers::onState), this);
  g_signal_connect(window_, "notify::is-active", G_CALLBACK(Handlers::onActive), this);
  gtk_accel_group_connect(menu_.tasti(), GDK_KEY_w, GDK_CONTROL_MASK, GTK_ACCEL_LOCKED,
                          g_cclosure_new(G_CALLBACK(Handlers::onCloseKey), this, nullptr));
  gtk_window_add_accel_group(GTK_WINDOW(window_), menu_.tasti());
}

GtkWidget* WindowGtk::headerBar(const std::string& titolo) {
  GtkWidget* bar = gtk_header_bar_new();
  gtk_header_bar_set_title(GTK_HEADER_BAR(bar), titolo.c_str());
  gtk_header_bar_set_show_close_button(GTK_HEADER_BAR(bar), 1);
  GtkWidget* button = gtk_menu_button_new();
  gtk_button_set_image(GTK_BUTTON(button),
                       gtk_image_new_from_icon_name("open-menu-symbolic", GTK_ICON_SIZE_BUTTON));
  gtk_menu_button_set_popup(GTK_MENU_BUTTON(button), menu_.widget());
  gtk_widget_set_tooltip_text(button, "Menu");
  atk_object_set_name(gtk_widget_get_accessible(button), "Menu");
  gtk_header_bar_pack_end(GTK_HEADER_BAR(bar), button);
  gtk_accel_group_connect(menu_.tasti(), GDK_KEY_F10, GdkModifierType{}, GTK_ACCEL_LOCKED,
                          g_cclosure_new(G_CALLBACK(Handlers::onMenuKey), button, nullptr));
  return bar;
}

void WindowGtk::present(const std::string& token) {
  if (window_ == nullptr) return;
  chiusaRidotta_ = false;
  auto* window = GTK_WINDOW(window_);
  if (!token.empty()) gtk_window_set_startup_id(window, token.c_str());
  gtk_widget_show(window_);
  gtk_window_deiconify(window);
  gtk_window_present_with_time(window, presentTime(window_));
  gtk_widget_grab_focus(page_->widget());
}

void WindowGtk::close() {
  if (window_ == nullptr || !visible()) return;
  eventi_.windowWillClose();
  if (nasconde_) {
    gtk_widget_hide(window_);
  } else {
    chiusaRidotta_ = true;
    gtk_window_iconify(GTK_WINDOW(window_));
  }
}

bool WindowGtk::visible() const {
  return window_ != nullptr && gtk_widget_get_visible(window_) != 0 && !ridotta_ && !chiusaRidotta_;
}

GtkWindow* WindowGtk::parent() const { return visible() ? GTK_WINDOW(window_) : nullptr; }

}  // namespace pellak::native
