#pragma once

#include <memory>

#include "platform/Sha256.h"

namespace pellak::native {

/// SHA-256 by libcrypto, on any processor.
std::unique_ptr<TwinSha256> creaSha256OpenSsl();

}  // namespace pellak::native
