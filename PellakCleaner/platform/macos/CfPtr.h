#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <memory>
#include <type_traits>

// For .cpp files of this folder only.
namespace pellak::native {

struct CfRelease {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};

/// Owns an object of Core Foundation: what a function with Create or Copy in its name returned.
template <class Ref>
using CfPtr = std::unique_ptr<std::remove_pointer_t<Ref>, CfRelease>;

}  // namespace pellak::native
