#pragma once

#include "platform/Result.h"
#include "platform/TrashCan.h"
#include "platform/linux/TrashFolder.h"

namespace pellak::native {

/// Whether "not found" can be believed of an item of the Trash. Errors say in `causa` why not. Any
/// thread.

/// In a Trash that is open: its item and its record, when there is one, can be looked at.
Result<void> lookIn(const TrashFolder& cestino, const TrashPlan& piano);

/// In a Trash that could not be opened for `perche`: success when it is gone from a volume that is
/// certainly there, or never was one of this user's.
Result<void> surelyGone(const TrashPlan& piano, const Error& perche);

}  // namespace pellak::native
