#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/DesktopHost.h"
#include "platform/linux/SingleInstance.h"
#include "platform/linux/gtk/MainLoopGtk.h"

namespace pellak::native {

/// The desktop through GTK 3, WebKitGTK and the status notifier convention.
///
/// Everything but the loop's own verbs (`post`, timers, `terminate`) works while `run` does and is
/// ignored before and after it.
class DesktopHostGtk final : public DesktopHost {
 public:
  /// Connects to the display. Errors: missing (no display, or it can't be reached). `istanza`
  /// outlives the host, which reports further starts as `reopened`.
  static Result<std::unique_ptr<DesktopHostGtk>> connect(SingleInstance& istanza);
  ~DesktopHostGtk() override;
  DesktopHostGtk(const DesktopHostGtk&) = delete;
  DesktopHostGtk& operator=(const DesktopHostGtk&) = delete;

  void post(Task task) override { loop_.post(std::move(task)); }
  TimerId after(double seconds, Task task) override {
    return loop_.after(seconds, std::move(task));
  }
  TimerId every(double seconds, Task task) override {
    return loop_.every(seconds, std::move(task));
  }
  void cancel(TimerId timer) override { loop_.cancel(timer); }

  int run(DesktopEvents& eventi, Task pronto) override;
  void terminate(int stato) override { loop_.terminate(stato); }

  /// A menu button in the window's header bar; its keys work in the whole window.
  void setMainMenu(const std::vector<MenuEntry>& voci) override;
  void openWindow(const WindowPlan& finestra, const std::vector<std::string>& canali) override;
  void loadHtml(const std::string& testo) override;
  void loadFile(const std::string& percorso, const std::string& cartella) override;
  void evaluate(const std::string& script) override;
  void callAsync(const std::string& corpo, std::function<void(Result<std::string>)> fatto) override;
  void presentWindow() override;
  void closeWindow() override;
  void setCloseHides(bool nasconde) override;
  bool windowVisible() const override;
  void setRegular(bool /*regolare*/) override {}
  void alert(const AlertPlan& avviso, std::function<void(std::size_t)> scelto) override;
  void chooseFolders(const std::string& pulsante, const std::string& messaggio,
                     std::function<void(std::vector<std::string>)> scelte) override;
  void showAbout(const AboutPlan& informazioni) override;
  bool setStatusMenu(const std::vector<StatRow>& letture,
                     const std::vector<MenuEntry>& voci) override;
  void setStatusImage(const std::string& percorso, const std::string& lettera) override;
  void setStatusTitle(const std::string& testo) override;

 private:
  struct Parts;

  explicit DesktopHostGtk(SingleInstance& istanza);

  SingleInstance& istanza_;
  MainLoopGtk loop_;
  std::unique_ptr<Parts> parts_;  ///< there while `run` works
};

}  // namespace pellak::native
