#include "platform/macos/ProcessesMac.h"

#include <array>
#include <cstdint>
#include <libproc.h>
#include <sys/proc_info.h>
#include <unistd.h>

namespace pellak::native {
namespace {

/// Room for processes that start in between.
constexpr std::size_t kSpare = 64;

std::vector<pid_t> allPids() {
  const int count = ::proc_listallpids(nullptr, 0);
  if (count <= 0) return {};
  std::vector<pid_t> pids(static_cast<std::size_t>(count) + kSpare);
  const int found = ::proc_listallpids(pids.data(), static_cast<int>(pids.size() * sizeof(pid_t)));
  pids.resize(found > 0 ? static_cast<std::size_t>(found) : 0);
  return pids;
}

bool isOurs(pid_t pid) {
  proc_bsdshortinfo info{};
  constexpr int kBytes = static_cast<int>(sizeof info);
  return ::proc_pidinfo(pid, PROC_PIDT_SHORTBSDINFO, 0, &info, kBytes) == kBytes &&
         info.pbsi_uid == ::getuid();
}

}  // namespace

std::vector<ProcessMac> ownProcesses() {
  std::vector<ProcessMac> processes;
  std::array<char, PROC_PIDPATHINFO_MAXSIZE> path{};
  for (const pid_t pid : allPids()) {
    if (!isOurs(pid)) continue;
    const int length = ::proc_pidpath(pid, path.data(), static_cast<std::uint32_t>(path.size()));
    if (length <= 0) continue;
    processes.push_back({pid, std::string(path.data(), static_cast<std::size_t>(length))});
  }
  return processes;
}

}  // namespace pellak::native
