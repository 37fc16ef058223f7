#pragma once

#include "shell/Blindato.h"

namespace pellak::shell {

/// What the program's own texts are sealed with.
constexpr blindato::Chiave kChiave = {0x5e, 0xb1, 0x27, 0xc4, 0x9a, 0x03, 0xf8, 0x6d,
                                      0x41, 0xdc, 0x72, 0x0e, 0xa5, 0x38, 0x9f, 0x14};

}  // namespace pellak::shell
