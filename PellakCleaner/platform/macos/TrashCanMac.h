#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/TrashCan.h"

namespace pellak::native {

/// The file manager's Trash. It chooses the place of an item while it moves it.
class TrashCanMac final : public TrashCan {
 public:
  std::unique_ptr<TrashBatch> begin() override;
  bool insideTrash(std::string_view percorso) const override;
  /// The system's Trash keeps no records anyway.
  void alsoFrom(std::string /*cartella*/) override {}
};

}  // namespace pellak::native
