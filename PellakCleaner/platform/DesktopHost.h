#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/MainLoop.h"
#include "platform/Result.h"

namespace pellak {

/// What a menu entry asks for.
enum class MenuAction {
  none,  ///< a reading, a separator or a submenu
  open,
  scanAll,
  awakeHalfHour,
  awakeTwoHours,
  awakeForever,
  awakeOff,
  about,
  quit,
  scanView,   ///< scans what the page shows
  settings,   ///< the page's settings
  firstView,  ///< and the ones after it up to `lastView`: the page's views in their order
  lastView = firstView + 8
};

/// One entry of a menu. Without title and submenu it is a separator.
struct MenuEntry {
  std::string titolo;
  MenuAction azione = MenuAction::none;
  std::string tasto;  ///< sign of the key equivalent; empty: none
  bool spunta = false;
  std::vector<MenuEntry> sotto;
};

/// One reading in the status menu.
struct StatRow {
  std::string symbol;  ///< name of the system's symbol, where it has such
  std::string title;
  std::string value;
  std::string sub;            ///< second line; may be empty
  double fraction = -1;       ///< 0 to 1: a filled bar; negative: none
  std::vector<double> cores;  ///< one small bar each
};

struct WindowPlan {
  std::string titolo;
  int larghezza = 0;
  int altezza = 0;
  int minLarghezza = 0;
  int minAltezza = 0;
};

/// A modal message with buttons; the first one is the default.
struct AlertPlan {
  std::string messaggio;
  std::string informazione;
  std::vector<std::string> pulsanti;
};

/// What the About window shows.
struct AboutPlan {
  std::string nome;
  std::string versione;
  std::string testo;
  std::string logo;      ///< image file; may be missing
  std::string supporto;  ///< address that the support button opens; empty: no button
};

/// What the host reports. Main thread.
class DesktopEvents {
 public:
  virtual ~DesktopEvents() = default;

  /// The page posted a message: the channel's name and the body as JSON text.
  virtual void message(const std::string& canale, const std::string& json) = 0;
  /// The main window is going to close; it is hidden or minimised afterwards, never destroyed.
  virtual void windowWillClose() = 0;
  /// The user came back to the application.
  virtual void activated() = 0;
  /// The user started the application again while it runs.
  virtual void reopened() = 0;
  virtual void menuChosen(MenuAction azione) = 0;
  /// The status menu is about to show.
  virtual void menuWillOpen() = 0;
  /// The page calls alert or confirm; `risposta` is called once, later or at once.
  virtual void scriptAlert(const std::string& testo, std::function<void()> risposta) = 0;
  virtual void scriptConfirm(const std::string& testo, std::function<void(bool)> risposta) = 0;
  /// The process that shows the page ended by itself; the view is empty now.
  virtual void pageGone() = 0;
};

/// The desktop as far as the application needs one: a window with a web view, menus, dialogs, the
/// status item and the main loop. Carries verbs and decides nothing.
///
/// Threads: main only, but `post` from any.
class DesktopHost : public MainLoop {
 public:
  /// Runs until `terminate`; returns its status. `pronto` is called once, on the running loop.
  virtual int run(DesktopEvents& eventi, Task pronto) = 0;
  virtual void terminate(int stato) = 0;

  virtual void setMainMenu(const std::vector<MenuEntry>& voci) = 0;

  /// Makes the window with its empty web view, whose page may post on `canali`, and shows it.
  virtual void openWindow(const WindowPlan& finestra, const std::vector<std::string>& canali) = 0;
  virtual void loadHtml(const std::string& testo) = 0;
  /// A page file that may read everything in `cartella`.
  virtual void loadFile(const std::string& percorso, const std::string& cartella) = 0;
  /// Runs a script in the page; what comes of it does not matter.
  virtual void evaluate(const std::string& script) = 0;
  /// Runs the body of an asynchronous function in the page; `fatto` gets its result as text.
  virtual void callAsync(const std::string& corpo,
                         std::function<void(Result<std::string>)> fatto) = 0;

  /// In front of everything, with the keyboard.
  virtual void presentWindow() = 0;
  virtual void closeWindow() = 0;
  /// Whether closing hides the window (the rule) or only minimises it, because nothing is there
  /// that could bring a hidden one back.
  virtual void setCloseHides(bool nasconde) = 0;
  virtual bool windowVisible() const = 0;
  /// Whether the application shows among the running ones (Dock); where there is no such thing,
  /// nothing happens.
  virtual void setRegular(bool regolare) = 0;

  virtual void alert(const AlertPlan& avviso, std::function<void(std::size_t)> scelto) = 0;
  /// Absolute paths, bytes, in the order of the selection; none when cancelled.
  virtual void chooseFolders(const std::string& pulsante, const std::string& messaggio,
                             std::function<void(std::vector<std::string>)> scelte) = 0;
  virtual void showAbout(const AboutPlan& informazioni) = 0;

  /// Makes the status item, or replaces its menu: the readings first. False when nobody shows
  /// status items: the window must then stay reachable otherwise.
  virtual bool setStatusMenu(const std::vector<StatRow>& letture,
                             const std::vector<MenuEntry>& voci) = 0;
  /// The image of the status item; when it can't be read the item shows `lettera`.
  virtual void setStatusImage(const std::string& percorso, const std::string& lettera) = 0;
  /// Text beside the status item's image; empty: none.
  virtual void setStatusTitle(const std::string& testo) = 0;
};

}  // namespace pellak
