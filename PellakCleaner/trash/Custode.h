#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "PellakCore/Store.h"
#include "platform/TrashCan.h"

namespace pellak::trash {

/// Says which paths may be moved to the Trash at all, whoever found them, and where something may
/// come back to. Purely textual; any thread.
class Custode {
 public:
  /// `cartelle`: further folders that stay themselves, as the user's own under other names.
  Custode(const Store& store, const TrashCan& can, std::vector<std::string> cartelle = {})
      : store_(store), can_(can), cartelle_(std::move(cartelle)) {}

  /// Not: a path that is not in its plain form, folders at the top of the disk, what the system
  /// is made of, the home folder or one that holds it, its standard folders, the Trash, and our
  /// own files.
  bool ammesso(std::string_view percorso) const;

  /// Not: a path that is not in its plain form, what the system is made of or configured by (the
  /// folders of items that start by themselves may be), a Trash, and our own files.
  bool destinazione(std::string_view percorso) const;

 private:
  const Store store_;
  const TrashCan& can_;
  const std::vector<std::string> cartelle_;
};

}  // namespace pellak::trash
