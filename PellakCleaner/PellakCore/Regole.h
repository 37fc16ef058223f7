#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Result.h"

namespace pellak {

class Config;

/// One entry of the rules file's "categories": where a category's files lie and what may be done
/// with them. Keys that are absent or of another type have the values below. Paths may begin
/// with "~".
struct RegolaCategoria {
  std::string id;
  std::string name;
  std::string mode = "report";
  std::string note;
  double minAgeDays = 0;             ///< 0 or less: no age filter
  std::string childrenOf;            ///< every direct child of this folder is a candidate
  std::vector<std::string> glob;     ///< folder + "/*." + extension
  std::string section;               ///< joins this section after the catalogue's own categories
  std::vector<std::string> folders;  ///< further folders like `childrenOf`
  std::vector<std::string> paths;    ///< files or folders that are candidates themselves
  std::vector<std::string> except;   ///< names, "*" for any run of bytes, that are no candidates
};

/// The rules file's "duplicates". The exclusions serve the large and old files too.
struct RegoleDuplicati {
  std::int64_t minSizeMb = 5;
  std::vector<std::string> roots;
  std::vector<std::string> excludeDirNames;
  std::vector<std::string> excludeBundleSuffixes;
  std::vector<std::string> excludePaths;
  /// Where files only pass through: of a set, a copy elsewhere rather stays. No key of the file.
  std::vector<std::string> passaggi = {"~/Downloads", "~/Desktop"};
};

/// The rules file's "large_old".
struct RegoleGrandi {
  double minSizeMb = 200;
  double minAgeDays = 180;
  std::vector<std::string> roots;
  std::int64_t top = 25;
};

/// The rules a scan works by. A default-made record is what a missing rules file means: the
/// scanners of their own still run.
struct Regole {
  std::vector<RegolaCategoria> categorie;
  RegoleDuplicati duplicati;
  RegoleGrandi grandi;

  /// Why the rules file could not be read; empty when it was.
  std::string guasto;

  const RegolaCategoria* cerca(std::string_view id) const;
};

/// A folder below the home that lies elsewhere for this user.
struct Spostamento {
  std::string da;  ///< as the rules write it, "~/.cache"
  std::string a;   ///< absolute
};

/// The rules with every place and root below a moved folder put where that folder is.
Regole conSpostamenti(Regole regole, const std::vector<Spostamento>& spostamenti);

/// Reads a rules document, leniently inside. Error (invalid) when the text is no JSON object.
Result<Regole> leggiRegole(std::string_view testo);

/// The rules with the user's settings written over them.
Regole conImpostazioni(Regole regole, const Config& impostazioni);

}  // namespace pellak
