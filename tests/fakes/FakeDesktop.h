#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "fakes/FakeClock.h"
#include "platform/DesktopHost.h"
#include "platform/KeepAwake.h"
#include "platform/SystemProbe.h"

namespace pellak::fakes {

/// A desktop without a screen: records what it is asked to do, turns its loop when the test says
/// so. `post` from any thread, the rest from the test's.
class FakeDesktop final : public DesktopHost {
 public:
  explicit FakeDesktop(FakeClock& clock) : clock_(clock) {}

  void post(Task task) override {
    const std::lock_guard<std::mutex> hold(lock_);
    posted_.push_back(std::move(task));
    arrived_.notify_all();
  }
  TimerId after(double seconds, Task task) override { return add(seconds, 0, std::move(task)); }
  TimerId every(double seconds, Task task) override {
    return add(seconds, seconds, std::move(task));
  }
  void cancel(TimerId timer) override { timers.erase(timer); }

  int run(DesktopEvents& eventi, Task pronto) override {
    events = &eventi;
    pronto();
    turn();
    return 0;
  }
  void terminate(int stato) override { did("terminate " + std::to_string(stato)); }
  void setMainMenu(const std::vector<MenuEntry>& voci) override { mainMenu = voci; }
  void openWindow(const WindowPlan& finestra, const std::vector<std::string>& canali) override {
    visible = true;
    std::string testo = "window " + finestra.titolo + " " + std::to_string(finestra.larghezza) +
                        "x" + std::to_string(finestra.altezza) + " min " +
                        std::to_string(finestra.minLarghezza) + "x" +
                        std::to_string(finestra.minAltezza);
    for (const std::string& canale : canali) testo += " " + canale;
    did(testo);
  }
  void loadHtml(const std::string& testo) override { did("html " + testo); }
  void loadFile(const std::string& percorso, const std::string& cartella) override {
    did("file " + percorso + " in " + cartella);
  }
  void evaluate(const std::string& script) override { did("js " + script); }
  void callAsync(const std::string& corpo,
                 std::function<void(Result<std::string>)> fatto) override {
    fatto("fatto: " + corpo);
  }
  void presentWindow() override {
    visible = true;
    did("present");
  }
  void closeWindow() override {
    events->windowWillClose();
    visible = false;
  }
  void setCloseHides(bool nasconde) override { closeHides = nasconde; }
  bool windowVisible() const override { return visible; }
  void setRegular(bool regolare) override { did(regolare ? "regular" : "accessory"); }
  void alert(const AlertPlan& avviso, std::function<void(std::size_t)> scelto) override {
    std::string testo = "alert " + avviso.messaggio + "|" + avviso.informazione;
    for (const std::string& pulsante : avviso.pulsanti) testo += "|" + pulsante;
    did(testo);
    answer = std::move(scelto);
  }
  void chooseFolders(const std::string& pulsante, const std::string& messaggio,
                     std::function<void(std::vector<std::string>)> scelte) override {
    did("choose " + pulsante + "|" + messaggio);
    scelte(folders);
  }
  void showAbout(const AboutPlan& informazioni) override {
    did("about " + informazioni.nome + "|" + informazioni.versione + "|" + informazioni.testo);
  }
  bool setStatusMenu(const std::vector<StatRow>& letture,
                     const std::vector<MenuEntry>& voci) override {
    readings = letture;
    statusMenu = voci;
    return hasStatusHost;
  }
  void setStatusImage(const std::string& /*percorso*/, const std::string& /*lettera*/) override {}
  void setStatusTitle(const std::string& testo) override { statusTitle = testo; }

  /// Runs what was posted; waits until at least `least` tasks came.
  void turn(std::size_t least = 0) {
    for (std::size_t done = 0;;) {
      std::unique_lock<std::mutex> hold(lock_);
      if (posted_.empty() && done >= least) return;
      if (!arrived_.wait_for(hold, std::chrono::seconds(30), [&] { return !posted_.empty(); })) {
        return;
      }
      const Task task = std::move(posted_.front());
      posted_.pop_front();
      hold.unlock();
      task();
      ++done;
    }
  }

  /// Lets time pass; each timer that becomes due fires once.
  void pass(double seconds) {
    clock_.advance(seconds);
    const auto now = timers;
    for (const auto& [id, timer] : now) {
      if (timer.due > clock_.now() || !timers.contains(id)) continue;
      if (timer.interval > 0) {
        timers[id].due += timer.interval;
      } else {
        timers.erase(id);
      }
      timer.task();
    }
    turn();
  }

  /// What was done since the last call.
  std::vector<std::string> taken() { return std::exchange(log_, {}); }

  struct Timer {
    double due;
    double interval;
    Task task;
  };
  std::map<TimerId, Timer> timers;
  DesktopEvents* events = nullptr;
  std::vector<MenuEntry> mainMenu;
  std::vector<MenuEntry> statusMenu;
  std::vector<StatRow> readings;
  std::vector<std::string> folders;  ///< what the chooser answers
  std::string statusTitle;
  std::function<void(std::size_t)> answer;  ///< of the last alert
  bool visible = false;
  bool closeHides = true;
  bool hasStatusHost = true;

 private:
  void did(std::string what) { log_.push_back(std::move(what)); }
  TimerId add(double seconds, double interval, Task task) {
    timers[++last_] = {clock_.now() + seconds, interval, std::move(task)};
    return last_;
  }

  FakeClock& clock_;
  std::mutex lock_;
  std::condition_variable arrived_;
  std::deque<Task> posted_;
  std::vector<std::string> log_;
  TimerId last_ = 0;
};

/// Readings as the test sets them.
class FakeProbe final : public SystemProbe {
 public:
  std::vector<CoreTicks> cores() override { return ticks; }
  std::optional<NetBytes> network() override { return net; }
  std::optional<double> load() override { return 1.5; }
  std::optional<MemoryUse> memory() override { return MemoryUse{3 << 20, 4 << 20}; }
  std::optional<DiskSpace> disk(std::string_view /*percorso*/) override {
    return DiskSpace{1 << 30, 1LL << 31, 3 << 28};
  }
  std::optional<BatteryCharge> battery() override { return charge; }

  std::vector<CoreTicks> ticks = {{0, 0}, {0, 0}};
  std::optional<NetBytes> net = NetBytes{0, 0};
  std::optional<BatteryCharge> charge;
};

class FakeKeepAwake final : public KeepAwake {
 public:
  std::optional<std::uint32_t> acquire(const std::string& motivo) override {
    reason = motivo;
    if (refuses) return {};
    return *held.insert(++last_).first;
  }
  void release(std::uint32_t id) override {
    if (held.erase(id) != 1) throw std::logic_error("not held");
  }

  bool refuses = false;
  std::string reason;  ///< the last one given
  std::set<std::uint32_t> held;

 private:
  std::uint32_t last_ = 0;
};

}  // namespace pellak::fakes
