#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/DesktopHost.h"
#include "platform/macos/appkit/MainLoopMac.h"

namespace pellak::native {

/// The desktop through AppKit and WebKit.
///
/// Everything but the loop's own verbs (`post`, timers, `terminate`) works while `run` does and is
/// ignored before and after it. One in a process.
class DesktopHostMac final : public DesktopHost {
 public:
  /// Makes the shared application. There must be a session with a screen.
  DesktopHostMac();
  ~DesktopHostMac() override;
  DesktopHostMac(const DesktopHostMac&) = delete;
  DesktopHostMac& operator=(const DesktopHostMac&) = delete;

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
  void setRegular(bool regolare) override;
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

  MainLoopMac loop_;
  std::unique_ptr<Parts> parts_;  ///< there while `run` works
};

}  // namespace pellak::native
