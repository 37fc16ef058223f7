#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "PellakCore/Finding.h"
#include "platform/FileReader.h"

namespace pellak::trash {

/// Looks at the copies of a duplicate set as they are on the disk now. Any thread.
///
/// A copy is as the scan found it when it is the same file, and nothing of its record moved. When
/// size and time are the same and only the file or its record is another (it was put back from
/// elsewhere, got another name or other rights), its content is read and compared with the scan's;
/// so it is for results that hold no identity, and for a set whose contents were remembered.
class Copie {
 public:
  explicit Copie(FileReader& reader) : reader_(reader) {}

  /// The state of a copy that may stay while `scartate` go: a regular file as the scan found it,
  /// and not another name of a discarded file. Nothing when it may not.
  std::optional<FileMark> conservabile(const Group& gruppo, std::size_t copia,
                                       const std::vector<std::string>& scartate) const;

  /// Whether nothing happened to a copy since.
  bool ancora(const std::string& percorso, const FileMark& stato) const;

  bool esiste(const std::string& percorso) const;

  /// The state of a copy that is still as the scan found it. Errors: missing when there is nothing;
  /// anything else: what lies there now may be nowhere else.
  Result<FileMark> scartabile(const Group& gruppo, std::size_t copia) const;

 private:
  Result<FileMark> stato(const std::string& percorso) const;
  bool comeTrovata(const Group& gruppo, std::size_t copia, const FileMark& stato) const;

  FileReader& reader_;
};

}  // namespace pellak::trash
