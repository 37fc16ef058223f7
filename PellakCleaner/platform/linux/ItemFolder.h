#pragma once

#include <string>
#include <string_view>

#include "platform/Result.h"
#include "platform/linux/TrashFolder.h"
#include "platform/posix/Descriptor.h"

namespace pellak::native {

/// A folder, part of the path it was taken from, and a name in it.
struct Split {
  std::string_view cartella;
  std::string nome;
};

/// Empty when the path can't be an item's.
Split split(std::string_view percorso);

/// The folder that items are taken out of or put into, held open: that of one item is usually that
/// of the next. One thread at a time.
class ItemFolder {
 public:
  enum class Missing { fail, make };

  /// `fidata` as for openWithoutLinks.
  explicit ItemFolder(std::string fidata) : fidata_(std::move(fidata)) {}

  /// Its descriptor, good until the next call. Errors: as for openWithoutLinks.
  Result<int> open(std::string_view cartella, Missing mancante = Missing::fail);
  /// Of the folder that is open.
  const Volume& volume() const { return volume_; }
  /// The system's own name of an item in it, links resolved.
  std::string realPath(const std::string& nome);

 private:
  const std::string fidata_;
  std::string nome_;
  std::string vero_;  ///< without links; empty until somebody asks
  posix::Descriptor cartella_;
  Volume volume_;
};

}  // namespace pellak::native
