#include "platform/linux/SystemProbeLinux.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <numeric>
#include <sstream>
#include <sys/statvfs.h>

#include "platform/posix/ReadToEnd.h"

namespace pellak::native {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t kKib = 1024;

constexpr std::size_t kMaxBytes = std::size_t{1} << 20U;

std::string content(const std::string& file) {
  auto text = posix::readToEnd(file, kMaxBytes);
  return text ? *text : std::string();
}

std::string firstLine(const std::string& file) {
  std::string text = content(file);
  text.resize(std::min(text.find('\n'), text.size()));
  return text;
}

std::optional<double> number(const std::string& file) {
  const std::string text = firstLine(file);
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  return end == text.c_str() ? std::nullopt : std::optional(value);
}

/// "cpu3" and the counters: user, nice, system, idle, iowait, irq, softirq, steal. The guests'
/// time behind them is part of the user's.
CoreTicks ticksOf(std::istringstream& line) {
  constexpr std::size_t kCounters = 8;
  constexpr std::size_t kIdle = 3;
  constexpr std::size_t kWaiting = 4;
  std::array<double, kCounters> counters{};
  for (double& counter : counters) line >> counter;
  CoreTicks core;
  core.total = std::accumulate(counters.begin(), counters.end(), 0.0);
  core.busy = core.total - counters[kIdle] - counters[kWaiting];
  return core;
}

/// What only exists inside this computer.
bool isVirtual(const std::string& sys, const std::string& interface) {
  std::error_code failure;
  return interface == "lo" || !fs::exists(sys + "/class/net/" + interface + "/device", failure);
}

/// The first battery that powers the computer itself, not a mouse.
std::string batteryFolder(const std::string& sys) {
  std::error_code failure;
  std::vector<std::string> found;
  for (fs::directory_iterator place(sys + "/class/power_supply", failure), end;
       !failure && place != end; place.increment(failure)) {
    const std::string folder = place->path().string();
    if (firstLine(folder + "/type") == "Battery" && firstLine(folder + "/scope") != "Device") {
      found.push_back(folder);
    }
  }
  return found.empty() ? std::string() : *std::min_element(found.begin(), found.end());
}

/// Minutes until full from what is missing and what flows in, in the battery's own units.
std::optional<int> minutesToFull(const std::string& folder) {
  constexpr double kMinutes = 60;
  for (const auto& [now, full, flow] :
       {std::array{"/energy_now", "/energy_full", "/power_now"},
        std::array{"/charge_now", "/charge_full", "/current_now"}}) {
    const auto has = number(folder + now);
    const auto most = number(folder + full);
    const auto rate = number(folder + flow);
    if (has && most && rate && *rate > 0 && *most > *has) {
      return static_cast<int>((*most - *has) / *rate * kMinutes);
    }
  }
  return {};
}

}  // namespace

std::vector<CoreTicks> SystemProbeLinux::cores() {
  std::vector<CoreTicks> found;
  std::istringstream input(content(proc_ + "/stat"));
  for (std::string line; std::getline(input, line);) {
    if (!line.starts_with("cpu")) break;
    std::istringstream words(line);
    std::string name;
    words >> name;
    // The first line is the sum of all.
    if (name != "cpu") found.push_back(ticksOf(words));
  }
  return found;
}

std::optional<NetBytes> SystemProbeLinux::network() {
  const auto table = posix::readToEnd(proc_ + "/net/dev", kMaxBytes);
  if (!table) return {};
  std::istringstream input(*table);
  NetBytes sum;
  for (std::string line; std::getline(input, line);) {
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos) continue;
    const std::size_t begin = line.find_first_not_of(' ');
    if (isVirtual(sys_, line.substr(begin, colon - begin))) continue;
    std::istringstream words(line.substr(colon + 1));
    // Received: bytes and seven more; then sent bytes.
    std::array<double, 9> counters{};
    for (double& counter : counters) words >> counter;
    sum.rx += counters.front();
    sum.tx += counters.back();
  }
  return sum;
}

std::optional<double> SystemProbeLinux::load() { return number(proc_ + "/loadavg"); }

std::optional<MemoryUse> SystemProbeLinux::memory() {
  const std::string text = content(proc_ + "/meminfo");
  const auto kib = [&](const char* key) -> std::optional<std::int64_t> {
    const std::size_t place = text.find(key);
    if (place == std::string::npos) return {};
    return std::strtoll(text.c_str() + text.find(':', place) + 1, nullptr, 10);
  };
  const auto total = kib("MemTotal:");
  const auto available = kib("MemAvailable:");
  if (!total || !available) return {};
  return MemoryUse{(*total - *available) * kKib, *total * kKib};
}

std::optional<DiskSpace> SystemProbeLinux::disk(std::string_view percorso) {
  struct statvfs record {};
  if (::statvfs(std::string(percorso).c_str(), &record) != 0) return {};
  const auto block = static_cast<std::int64_t>(record.f_frsize);
  return DiskSpace{static_cast<std::int64_t>(record.f_bavail) * block,
                   static_cast<std::int64_t>(record.f_blocks) * block,
                   static_cast<std::int64_t>(record.f_blocks - record.f_bfree) * block};
}

std::optional<BatteryCharge> SystemProbeLinux::battery() {
  constexpr double kPercent = 100;
  const std::string folder = batteryFolder(sys_);
  if (folder.empty()) return {};
  const auto capacity = number(folder + "/capacity");
  if (!capacity) return {};
  BatteryCharge charge;
  charge.fraction = std::clamp(*capacity / kPercent, 0.0, 1.0);
  charge.charging = firstLine(folder + "/status") == "Charging";
  if (charge.charging) charge.minutesToFull = minutesToFull(folder);
  return charge;
}

}  // namespace pellak::native
