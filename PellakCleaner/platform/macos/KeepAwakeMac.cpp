#include "platform/macos/KeepAwakeMac.h"

#include <IOKit/pwr_mgt/IOPMLib.h>

#include "platform/macos/CfPtr.h"

namespace pellak::native {

std::optional<std::uint32_t> KeepAwakeMac::acquire(const std::string& motivo) {
  const CfPtr<CFStringRef> name(
      CFStringCreateWithCString(kCFAllocatorDefault, motivo.c_str(), kCFStringEncodingUTF8));
  if (name == nullptr) return {};
  IOPMAssertionID id = kIOPMNullAssertionID;
  const IOReturn outcome = IOPMAssertionCreateWithName(CFSTR("NoDisplaySleepAssertion"),
                                                       kIOPMAssertionLevelOn, name.get(), &id);
  if (outcome != kIOReturnSuccess) return {};
  return id;
}

void KeepAwakeMac::release(std::uint32_t id) { IOPMAssertionRelease(id); }

}  // namespace pellak::native
