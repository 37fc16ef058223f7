#pragma once

#include <optional>

#include "platform/SystemProbe.h"

namespace pellak::native {

/// The computer's own battery as the power sources service shows it; nothing when there is none.
/// Any thread.
std::optional<BatteryCharge> readBattery();

}  // namespace pellak::native
