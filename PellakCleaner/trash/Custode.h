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

  /// Not: what could not come back (`destinazione`), folders at the top of the disk, the system's
  /// own databases, the home folder or one that holds it, and its standard folders.
  bool ammesso(std::string_view percorso) const;

  /// Why a path that is not `ammesso` has to stay, an Italian fragment; nothing where its form is
  /// all there is to say.
  std::string causaDelRifiuto(std::string_view percorso) const;

  /// Not: a path that is not in its plain form, what the system is made of or configured by (the
  /// folders of items that start by themselves may be), a Trash, and our own files.
  bool destinazione(std::string_view percorso) const;

 private:
  const Store store_;
  const TrashCan& can_;
  const std::vector<std::string> cartelle_;
};

}  // namespace pellak::trash
