#include "platform/macos/PowerSourceMac.h"

#include <IOKit/ps/IOPSKeys.h>
#include <IOKit/ps/IOPowerSources.h>
#include <algorithm>

#include "platform/macos/CfPtr.h"

namespace pellak::native {
namespace {

std::optional<int> number(CFDictionaryRef source, CFStringRef key) {
  const CFTypeRef value = CFDictionaryGetValue(source, key);
  int found = 0;
  if (value == nullptr || CFGetTypeID(value) != CFNumberGetTypeID()) return {};
  if (!CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberIntType, &found)) return {};
  return found;
}

bool flag(CFDictionaryRef source, CFStringRef key) {
  const CFTypeRef value = CFDictionaryGetValue(source, key);
  return value != nullptr && CFGetTypeID(value) == CFBooleanGetTypeID() &&
         CFBooleanGetValue(static_cast<CFBooleanRef>(value));
}

bool isInternal(CFDictionaryRef source) {
  const CFTypeRef type = CFDictionaryGetValue(source, CFSTR(kIOPSTypeKey));
  return type != nullptr && CFEqual(type, CFSTR(kIOPSInternalBatteryType));
}

std::optional<BatteryCharge> chargeOf(CFDictionaryRef source) {
  const auto now = number(source, CFSTR(kIOPSCurrentCapacityKey));
  const auto full = number(source, CFSTR(kIOPSMaxCapacityKey));
  if (!now || !full || *full <= 0) return {};
  BatteryCharge charge;
  charge.fraction = std::clamp(static_cast<double>(*now) / *full, 0.0, 1.0);
  charge.charging = flag(source, CFSTR(kIOPSIsChargingKey));
  // Negative while the system still works it out.
  const auto minutes = number(source, CFSTR(kIOPSTimeToFullChargeKey));
  if (charge.charging && minutes && *minutes >= 0) charge.minutesToFull = *minutes;
  return charge;
}

}  // namespace

std::optional<BatteryCharge> readBattery() {
  const CfPtr<CFTypeRef> state(IOPSCopyPowerSourcesInfo());
  if (state == nullptr) return {};
  const CfPtr<CFArrayRef> sources(IOPSCopyPowerSourcesList(state.get()));
  if (sources == nullptr) return {};
  for (CFIndex i = 0; i < CFArrayGetCount(sources.get()); ++i) {
    const CFDictionaryRef source =
        IOPSGetPowerSourceDescription(state.get(), CFArrayGetValueAtIndex(sources.get(), i));
    if (source != nullptr && isInternal(source)) return chargeOf(source);
  }
  return {};
}

}  // namespace pellak::native
