#pragma once

#include <span>
#include <string>
#include <vector>

#include "platform/DirectoryLister.h"
#include "platform/TrashCan.h"
#include "trash/Registro.h"

namespace pellak::trash {

/// How things stand with an item of an operation before it goes back.
struct Sguardo {
  std::string orig;        ///< where it came from, in full
  bool suo = false;        ///< what lies in the Trash under its name is the item
  std::string causa = {};  ///< why the Trash can't be asked for it
  Result<EntryAttributes> dentro = Error{};
  Result<EntryAttributes> fuori = Error{};  ///< of what lies at `orig`
};

/// Looks at items and at where they came from, several at once where there are many. One for each
/// item; of those that the log says are not to be had only `orig` is filled in.
std::vector<Sguardo> guarda(TrashCan& can, DirectoryLister& lister, const std::string& home,
                            std::span<const Mossa> mosse);

}  // namespace pellak::trash
