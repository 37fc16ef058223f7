#include "platform/macos/SystemProbeMac.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <mach/mach.h>
#include <net/if.h>
#include <net/if_types.h>
#include <net/route.h>
#include <string>
#include <sys/mount.h>
#include <sys/param.h>
#include <sys/socket.h>
#include <sys/sysctl.h>

#include "platform/macos/PowerSourceMac.h"

namespace pellak::native {
namespace {

/// Asked for once: each call would add a reference to the port.
host_t host() {
  static const host_t port = mach_host_self();
  return port;
}

/// Empty when the system refuses.
std::vector<char> interfaceList() {
  std::array<int, 6> name = {CTL_NET, PF_ROUTE, 0, 0, NET_RT_IFLIST2, 0};
  std::size_t length = 0;
  if (::sysctl(name.data(), name.size(), nullptr, &length, nullptr, 0) != 0) return {};
  // Room for an interface that comes in between.
  constexpr std::size_t kSpare = 4096;
  std::vector<char> list(length + kSpare);
  length = list.size();
  if (::sysctl(name.data(), name.size(), list.data(), &length, nullptr, 0) != 0) return {};
  list.resize(length);
  return list;
}

/// A card. What only exists inside this computer carries the same bytes once more.
bool isReal(const if_msghdr2& interface) {
  return interface.ifm_data.ifi_type == IFT_ETHER || interface.ifm_data.ifi_type == IFT_CELLULAR;
}

}  // namespace

std::vector<CoreTicks> SystemProbeMac::cores() {
  natural_t count = 0;
  processor_info_array_t info = nullptr;
  mach_msg_type_number_t length = 0;
  if (host_processor_info(host(), PROCESSOR_CPU_LOAD_INFO, &count, &info, &length) !=
      KERN_SUCCESS) {
    return {};
  }
  const auto* loads = reinterpret_cast<const processor_cpu_load_info*>(info);
  std::vector<CoreTicks> found;
  for (natural_t i = 0; i < count; ++i) {
    const auto& ticks = loads[i].cpu_ticks;
    CoreTicks core;
    core.busy = static_cast<double>(ticks[CPU_STATE_USER]) + ticks[CPU_STATE_SYSTEM] +
                ticks[CPU_STATE_NICE];
    core.total = core.busy + ticks[CPU_STATE_IDLE];
    found.push_back(core);
  }
  vm_deallocate(mach_task_self(), reinterpret_cast<vm_address_t>(info), length * sizeof(*info));
  return found;
}

std::optional<NetBytes> SystemProbeMac::network() {
  const std::vector<char> list = interfaceList();
  if (list.empty()) return {};
  NetBytes sum;
  std::size_t place = 0;
  while (place + sizeof(if_msghdr) <= list.size()) {
    // The records are not aligned for all their fields.
    if_msghdr header{};
    std::memcpy(&header, list.data() + place, sizeof header);
    if (header.ifm_msglen == 0) break;
    if (header.ifm_type == RTM_IFINFO2 && place + sizeof(if_msghdr2) <= list.size()) {
      if_msghdr2 interface {};
      std::memcpy(&interface, list.data() + place, sizeof interface);
      if (isReal(interface)) {
        sum.rx += static_cast<double>(interface.ifm_data.ifi_ibytes);
        sum.tx += static_cast<double>(interface.ifm_data.ifi_obytes);
      }
    }
    place += header.ifm_msglen;
  }
  return sum;
}

std::optional<double> SystemProbeMac::load() {
  double average = 0;
  return ::getloadavg(&average, 1) == 1 ? std::optional(average) : std::nullopt;
}

/// Used is what the programs and the kernel hold and can't give back at once, compressed memory
/// included.
std::optional<MemoryUse> SystemProbeMac::memory() {
  vm_statistics64_data_t pages{};
  mach_msg_type_number_t length = HOST_VM_INFO64_COUNT;
  if (host_statistics64(host(), HOST_VM_INFO64, reinterpret_cast<host_info64_t>(&pages), &length) !=
      KERN_SUCCESS) {
    return {};
  }
  std::int64_t total = 0;
  std::size_t size = sizeof total;
  vm_size_t page = 0;
  if (::sysctlbyname("hw.memsize", &total, &size, nullptr, 0) != 0) return {};
  if (host_page_size(host(), &page) != KERN_SUCCESS) return {};
  const std::int64_t used = static_cast<std::int64_t>(pages.internal_page_count) -
                            static_cast<std::int64_t>(pages.purgeable_count) +
                            static_cast<std::int64_t>(pages.wire_count) +
                            static_cast<std::int64_t>(pages.compressor_page_count);
  return MemoryUse{used * static_cast<std::int64_t>(page), total};
}

std::optional<DiskSpace> SystemProbeMac::disk(std::string_view percorso) {
  struct statfs record {};
  if (::statfs(std::string(percorso).c_str(), &record) != 0) return {};
  const auto block = static_cast<std::int64_t>(record.f_bsize);
  return DiskSpace{static_cast<std::int64_t>(record.f_bavail) * block,
                   static_cast<std::int64_t>(record.f_blocks) * block,
                   static_cast<std::int64_t>(record.f_blocks - record.f_bfree) * block};
}

std::optional<BatteryCharge> SystemProbeMac::battery() { return readBattery(); }

}  // namespace pellak::native
