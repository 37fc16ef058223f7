#pragma once

#include <memory>

#include "platform/Sha256.h"

namespace pellak::posix {

/// SHA-256 by the processor's own instructions, two computations interleaved; null when this
/// processor has none that we know.
std::unique_ptr<TwinSha256> creaSha256Instructions();

}  // namespace pellak::posix
