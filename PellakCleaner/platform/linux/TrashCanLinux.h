#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/TrashCan.h"
#include "platform/posix/Riserva.h"

namespace pellak::native {

/// The freedesktop.org Trash, version 1.0: the home Trash below XDG_DATA_HOME, and ".Trash/<uid>"
/// or ".Trash-<uid>" at the top of every other volume.
class TrashCanLinux final : public TrashCan {
 public:
  /// The home Trash's records draw on `riserva`, which outlives it, when the disk is full.
  explicit TrashCanLinux(posix::Riserva* riserva = nullptr);

  std::unique_ptr<TrashBatch> begin() override;
  bool insideTrash(std::string_view percorso) const override;
  void alsoFrom(std::string cartella) override { senzaSchede_ = std::move(cartella); }

 private:
  posix::Riserva* const riserva_;
  const std::string casaVera_;  ///< the home Trash without the links above it
  std::string senzaSchede_;
};

}  // namespace pellak::native
