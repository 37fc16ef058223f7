#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "PellakCore/Finding.h"
#include "platform/FileReader.h"

namespace pellak::trash {

/// Looks at the copies of a duplicate set as they are on the disk now. Any thread.
class Copie {
 public:
  explicit Copie(FileReader& reader) : reader_(reader) {}

  /// The state of a copy that may stay while `scartate` go: a regular file as the scan found it
  /// (its size and time; results that hold no times: its whole content), and not another name of a
  /// discarded file. Of a set whose contents were remembered, the copy and all `scartate` are read.
  /// Nothing when it may not.
  std::optional<FileMark> conservabile(const Group& gruppo, std::size_t copia,
                                       const std::vector<std::string>& scartate) const;

  /// Whether nothing happened to a copy since.
  bool ancora(const std::string& percorso, const FileMark& stato) const;

  bool esiste(const std::string& percorso) const;

  /// Whether a copy was written to since the scan: what it holds now may be nowhere else.
  bool riscritta(const Group& gruppo, std::size_t copia) const;

 private:
  /// Whether a file holds, byte for byte as far as a hash tells, what the set does.
  bool contiene(const std::string& percorso, const Group& gruppo) const;
  std::optional<FileMark> stato(const std::string& percorso) const;
  bool comeTrovata(const Group& gruppo, std::size_t copia, const FileMark& stato) const;

  FileReader& reader_;
};

}  // namespace pellak::trash
