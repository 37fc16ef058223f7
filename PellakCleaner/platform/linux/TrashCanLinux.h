#pragma once

#include <memory>
#include <string_view>

#include "platform/TrashCan.h"

namespace pellak::native {

/// The freedesktop.org Trash, version 1.0: the home Trash below XDG_DATA_HOME, and ".Trash/<uid>"
/// or ".Trash-<uid>" at the top of every other volume.
class TrashCanLinux final : public TrashCan {
 public:
  std::unique_ptr<TrashBatch> begin() override;
  bool insideTrash(std::string_view percorso) const override;
};

}  // namespace pellak::native
