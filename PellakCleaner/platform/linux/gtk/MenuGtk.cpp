#include "platform/linux/gtk/MenuGtk.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <gtk/gtk.h>
#include <utility>

namespace pellak::native {
namespace {

constexpr int kBarCells = 10;
/// More cores than that make the line too wide to read.
constexpr std::size_t kMaxCoreBars = 32;

bool isSeparator(const MenuEntry& voce) { return voce.titolo.empty() && voce.sotto.empty(); }

/// Everything of the entries that an existing item can't change into.
void describe(const std::vector<MenuEntry>& voci, std::string& forma) {
  for (const MenuEntry& voce : voci) {
    forma += isSeparator(voce) ? '-' : (voce.spunta ? 'x' : 'o');
    forma += std::to_string(static_cast<int>(voce.azione)) + voce.tasto;
    forma += '(';
    describe(voce.sotto, forma);
    forma += ')';
  }
}

void titles(const std::vector<MenuEntry>& voci, std::vector<std::string>& testi) {
  for (const MenuEntry& voce : voci) {
    if (isSeparator(voce)) continue;
    testi.push_back(voce.titolo);
    titles(voce.sotto, testi);
  }
}

std::string fractionBar(double fraction) {
  const auto full = std::lround(std::clamp(fraction, 0.0, 1.0) * kBarCells);
  std::string bar;
  for (int cell = 0; cell < kBarCells; ++cell) bar += cell < full ? "▰" : "▱";
  return bar;
}

std::string coreBars(const std::vector<double>& cores) {
  static constexpr std::array<const char*, 8> kHeights = {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
  std::string bars;
  for (const double core : cores) {
    const double height = std::clamp(core, 0.0, 1.0) * (kHeights.size() - 1);
    bars += kHeights.at(static_cast<std::size_t>(std::lround(height)));
  }
  return bars;
}

/// The application's convention: a capital letter stands for the key with Shift.
void addKey(GtkWidget* item, GtkAccelGroup* tasti, const std::string& tasto) {
  if (tasto.size() != 1) return;
  const auto letter = static_cast<unsigned char>(tasto[0]);
  auto modifiers = GDK_CONTROL_MASK;
  if (std::isupper(letter) != 0) {
    modifiers = static_cast<GdkModifierType>(GDK_CONTROL_MASK | GDK_SHIFT_MASK);
  }
  gtk_widget_add_accelerator(item, "activate", tasti, static_cast<guint>(std::tolower(letter)),
                             modifiers, GTK_ACCEL_VISIBLE);
}

}  // namespace

std::string readingText(const StatRow& lettura) {
  std::string testo = lettura.title + ": " + lettura.value;
  if (!lettura.sub.empty()) testo += " · " + lettura.sub;
  if (!lettura.cores.empty() && lettura.cores.size() <= kMaxCoreBars) {
    testo += "  " + coreBars(lettura.cores);
  } else if (lettura.fraction >= 0) {
    testo += "  " + fractionBar(lettura.fraction);
  }
  return testo;
}

struct MenuGtk::Item {
  MenuGtk& menu;
  GtkWidget* widget;
  MenuAction azione;
};

MenuGtk::MenuGtk(std::function<void(MenuAction)> scelta)
    : scelta_(std::move(scelta)), menu_(gtk_menu_new()), tasti_(gtk_accel_group_new()) {
  g_object_ref_sink(menu_);
}

MenuGtk::~MenuGtk() {
  gtk_widget_destroy(menu_);
  g_object_unref(menu_);
  g_object_unref(tasti_);
}

void MenuGtk::set(const std::vector<StatRow>& letture, const std::vector<MenuEntry>& voci) {
  std::string forma = std::to_string(letture.size()) + ":";
  describe(voci, forma);
  if (forma == forma_) return rename(letture, voci);
  forma_ = std::move(forma);
  gtk_container_foreach(
      GTK_CONTAINER(menu_), [](GtkWidget* child, void*) { gtk_widget_destroy(child); }, nullptr);
  items_.clear();
  for (const StatRow& lettura : letture) addReading(readingText(lettura));
  if (!letture.empty()) {
    gtk_menu_shell_append(GTK_MENU_SHELL(menu_), gtk_separator_menu_item_new());
  }
  fill(GTK_MENU_SHELL(menu_), voci);
  gtk_widget_show_all(menu_);
}

void MenuGtk::rename(const std::vector<StatRow>& letture, const std::vector<MenuEntry>& voci) {
  std::vector<std::string> testi;
  testi.reserve(letture.size() + voci.size());
  for (const StatRow& lettura : letture) testi.push_back(readingText(lettura));
  titles(voci, testi);
  for (std::size_t i = 0; i < items_.size() && i < testi.size(); ++i) {
    auto* item = GTK_MENU_ITEM(items_[i]->widget);
    if (testi[i] != gtk_menu_item_get_label(item)) gtk_menu_item_set_label(item, testi[i].c_str());
  }
}

void MenuGtk::addReading(const std::string& testo) {
  GtkWidget* item = gtk_menu_item_new_with_label(testo.c_str());
  gtk_widget_set_sensitive(item, 0);
  gtk_menu_shell_append(GTK_MENU_SHELL(menu_), item);
  items_.push_back(std::make_unique<Item>(Item{*this, item, MenuAction::none}));
}

void MenuGtk::fill(GtkMenuShell* into, const std::vector<MenuEntry>& voci) {
  for (const MenuEntry& voce : voci) {
    if (isSeparator(voce)) {
      gtk_menu_shell_append(into, gtk_separator_menu_item_new());
    } else {
      add(into, voce);
    }
  }
}

void MenuGtk::add(GtkMenuShell* into, const MenuEntry& voce) {
  GtkWidget* item = voce.spunta ? gtk_check_menu_item_new_with_label(voce.titolo.c_str())
                                : gtk_menu_item_new_with_label(voce.titolo.c_str());
  if (voce.spunta) gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(item), 1);
  addKey(item, tasti_, voce.tasto);
  gtk_menu_shell_append(into, item);
  items_.push_back(std::make_unique<Item>(Item{*this, item, voce.azione}));
  g_signal_connect(item, "activate", G_CALLBACK(onActivate), items_.back().get());
  if (voce.sotto.empty()) return;
  GtkWidget* sotto = gtk_menu_new();
  gtk_menu_item_set_submenu(GTK_MENU_ITEM(item), sotto);
  fill(GTK_MENU_SHELL(sotto), voce.sotto);
}

/// A copy of what to do: the choice may replace all items.
void MenuGtk::onActivate(GtkWidget* widget, void* raw) {
  const auto* item = static_cast<Item*>(raw);
  MenuGtk& menu = item->menu;
  const MenuAction azione = item->azione;
  if (GTK_IS_CHECK_MENU_ITEM(widget)) {
    // The mark shows a state; only the application changes it.
    g_signal_handlers_block_by_func(widget, reinterpret_cast<void*>(onActivate), raw);
    gtk_check_menu_item_set_active(GTK_CHECK_MENU_ITEM(widget), 1);
    g_signal_handlers_unblock_by_func(widget, reinterpret_cast<void*>(onActivate), raw);
  }
  if (azione != MenuAction::none) menu.scelta_(azione);
}

}  // namespace pellak::native
