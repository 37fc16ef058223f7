#include "platform/linux/gtk/DialogsGtk.h"

#include <algorithm>
#include <gtk/gtk.h>
#include <utility>

#include "platform/linux/GlibPtr.h"

namespace pellak::native {
namespace {

constexpr int kLogoSize = 128;
constexpr int kAboutMargin = 24;
constexpr int kAboutSpacing = 10;
constexpr int kSupport = 1;

GlibText valid(const std::string& text) {
  return GlibText(g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())));
}

void addLabel(GtkBox* box, const std::string& text, const char* style) {
  GtkWidget* label = gtk_label_new(valid(text).get());
  gtk_label_set_justify(GTK_LABEL(label), GTK_JUSTIFY_CENTER);
  gtk_label_set_selectable(GTK_LABEL(label), 0);
  gtk_style_context_add_class(gtk_widget_get_style_context(label), style);
  gtk_box_pack_start(box, label, 0, 0, 0);
}

void addSupport(GtkBox* box, GtkWidget* dialog) {
  GtkWidget* button = gtk_button_new_with_label("Supporto");
  gtk_widget_set_halign(button, GTK_ALIGN_CENTER);
  gtk_widget_set_margin_top(button, kAboutSpacing);
  g_signal_connect_swapped(
      button, "clicked",
      G_CALLBACK(+[](GtkDialog* window) { gtk_dialog_response(window, kSupport); }), dialog);
  gtk_box_pack_start(box, button, 0, 0, 0);
}

/// A logo that is missing or broken leaves no trace.
void addLogo(GtkBox* box, const std::string& file) {
  const GlibObject<GdkPixbuf> image(
      gdk_pixbuf_new_from_file_at_scale(file.c_str(), kLogoSize, kLogoSize, 1, nullptr));
  if (image == nullptr) return;
  gtk_box_pack_start(box, gtk_image_new_from_pixbuf(image.get()), 0, 0, 0);
}

std::vector<std::string> chosenFolders(GtkFileChooser* chooser) {
  std::vector<std::string> folders;
  GSList* names = gtk_file_chooser_get_filenames(chooser);
  for (const GSList* name = names; name != nullptr; name = name->next) {
    folders.emplace_back(static_cast<const char*>(name->data));
  }
  g_slist_free_full(names, g_free);
  return folders;
}

}  // namespace

/// A dialog that waits for its answer.
struct DialogsGtk::Open {
  explicit Open(DialogsGtk& owner) : dialogs(owner) {}
  ~Open() {
    if (widget != nullptr) gtk_widget_destroy(widget);
    if (chooser != nullptr) {
      g_signal_handlers_disconnect_by_data(chooser, this);
      gtk_native_dialog_destroy(chooser);
      g_object_unref(chooser);
    }
  }
  Open(const Open&) = delete;
  Open& operator=(const Open&) = delete;

  DialogsGtk& dialogs;
  GtkWidget* widget = nullptr;
  GtkNativeDialog* chooser = nullptr;
  std::size_t pulsanti = 0;
  std::function<void(std::size_t)> scelto;
  std::function<void(std::vector<std::string>)> scelte;
};

DialogsGtk::DialogsGtk() = default;

DialogsGtk::~DialogsGtk() {
  for (const auto& open : aperti_) {
    if (open->widget != nullptr) g_signal_handlers_disconnect_by_data(open->widget, open.get());
  }
  if (about_ == nullptr) return;
  g_signal_handlers_disconnect_by_data(about_, this);
  gtk_widget_destroy(about_);
}

DialogsGtk::Open& DialogsGtk::keep(std::unique_ptr<Open> dialog) {
  aperti_.push_back(std::move(dialog));
  return *aperti_.back();
}

void DialogsGtk::forget(const Open* dialog) {
  std::erase_if(aperti_, [dialog](const auto& open) { return open.get() == dialog; });
}

void DialogsGtk::alert(GtkWindow* parent, const AlertPlan& avviso,
                       std::function<void(std::size_t)> scelto) {
  Open& open = keep(std::make_unique<Open>(*this));
  open.scelto = std::move(scelto);
  open.pulsanti = avviso.pulsanti.size();
  open.widget = gtk_message_dialog_new(parent, GTK_DIALOG_MODAL, GTK_MESSAGE_OTHER,
                                       GTK_BUTTONS_NONE, "%s", valid(avviso.messaggio).get());
  auto* dialog = GTK_DIALOG(open.widget);
  gtk_message_dialog_format_secondary_text(GTK_MESSAGE_DIALOG(open.widget), "%s",
                                           valid(avviso.informazione).get());
  // By the desktop's custom the main button stands on the right.
  for (std::size_t i = avviso.pulsanti.size(); i-- > 0;) {
    gtk_dialog_add_button(dialog, valid(avviso.pulsanti[i]).get(), static_cast<int>(i));
  }
  gtk_dialog_set_default_response(dialog, 0);
  g_signal_connect(open.widget, "response", G_CALLBACK(onAlert), &open);
  gtk_window_present(GTK_WINDOW(open.widget));
}

void DialogsGtk::onAlert(void* /*dialog*/, int response, void* raw) {
  auto* open = static_cast<Open*>(raw);
  const auto scelto = std::move(open->scelto);
  const std::size_t last = open->pulsanti == 0 ? 0 : open->pulsanti - 1;
  const bool chosen = response >= 0 && static_cast<std::size_t>(response) <= last;
  open->dialogs.forget(open);
  scelto(chosen ? static_cast<std::size_t>(response) : last);
}

void DialogsGtk::chooseFolders(GtkWindow* parent, const std::string& pulsante,
                               const std::string& messaggio,
                               std::function<void(std::vector<std::string>)> scelte) {
  Open& open = keep(std::make_unique<Open>(*this));
  open.scelte = std::move(scelte);
  open.chooser = GTK_NATIVE_DIALOG(
      gtk_file_chooser_native_new(messaggio.c_str(), parent, GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER,
                                  pulsante.c_str(), "Annulla"));
  gtk_file_chooser_set_select_multiple(GTK_FILE_CHOOSER(open.chooser), 1);
  gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(open.chooser), g_get_home_dir());
  g_signal_connect(open.chooser, "response", G_CALLBACK(onFolders), &open);
  gtk_native_dialog_show(open.chooser);
}

void DialogsGtk::onFolders(void* chooser, int response, void* raw) {
  auto* open = static_cast<Open*>(raw);
  const auto scelte = std::move(open->scelte);
  std::vector<std::string> folders;
  if (response == GTK_RESPONSE_ACCEPT) folders = chosenFolders(GTK_FILE_CHOOSER(chooser));
  open->dialogs.forget(open);
  scelte(std::move(folders));
}

void DialogsGtk::showAbout(GtkWindow* parent, const AboutPlan& informazioni) {
  if (about_ != nullptr) return gtk_window_present(GTK_WINDOW(about_));
  supporto_ = informazioni.supporto;
  about_ = gtk_dialog_new();
  auto* window = GTK_WINDOW(about_);
  gtk_window_set_title(window, ("Informazioni su " + informazioni.nome).c_str());
  gtk_window_set_transient_for(window, parent);
  gtk_window_set_resizable(window, 0);
  auto* box = GTK_BOX(gtk_dialog_get_content_area(GTK_DIALOG(about_)));
  gtk_container_set_border_width(GTK_CONTAINER(box), kAboutMargin);
  gtk_box_set_spacing(box, kAboutSpacing);
  addLogo(box, informazioni.logo);
  addLabel(box, informazioni.nome, "large-title");
  addLabel(box, informazioni.versione, GTK_STYLE_CLASS_DIM_LABEL);
  addLabel(box, informazioni.testo, GTK_STYLE_CLASS_LABEL);
  if (!supporto_.empty()) addSupport(box, about_);
  g_signal_connect(about_, "response", G_CALLBACK(onAbout), this);
  gtk_widget_show_all(about_);
  gtk_window_present(window);
}

/// The support button leaves the window open.
void DialogsGtk::onAbout(GtkWidget* window, int response, void* raw) {
  auto* self = static_cast<DialogsGtk*>(raw);
  if (response == kSupport) {
    gtk_show_uri_on_window(GTK_WINDOW(window), self->supporto_.c_str(),
                           gtk_get_current_event_time(), nullptr);
    return;
  }
  self->about_ = nullptr;
  gtk_widget_destroy(window);
}

}  // namespace pellak::native
