#pragma once

#include <string>

#include "platform/TrashCan.h"
#include "platform/posix/Descriptor.h"

namespace pellak::native {

/// One item's rename and the looks before and after it. Folders are open descriptors.

bool existsAt(int cartella, const std::string& nome);

/// Whether what lies there has the plan's numbers.
bool isItem(int cartella, const std::string& nome, const TrashPlan& piano);

/// Renames without ever replacing. A volume that can't promise that itself is asked first; in the
/// Trash the record holds the name meanwhile.
Result<void> renameExclusively(int da, const std::string& nome, int a, const std::string& nuovo);

/// An item as it is right before it moves.
struct Look {
  bool directory = false;
  posix::Descriptor held;  ///< of the item itself, where its numbers may change with the move
};

/// `overlay`: whether the volume shows items of layers below. Errors: missing, denied, invalid
/// (another item than was planned).
Result<Look> lookAgain(int cartella, const std::string& nome, const TrashPlan& piano, bool overlay);

/// Whether what lies in the Trash now is what was looked at.
bool arrived(int files, const std::string& nome, const TrashPlan& piano, const Look& look);

}  // namespace pellak::native
