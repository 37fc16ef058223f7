#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pellak {

/// One entry of a finding: a file or a folder.
struct Voce {
  std::string path;
  std::int64_t size = 0;  ///< allocated bytes
  double mtime = 0;       ///< seconds since 1970
};

/// One grouped entry: a duplicate set, an application, a startup item, an update.
struct Group {
  std::int64_t size = 0;
  std::string hash;  ///< content hash of a duplicate set; empty otherwise
  std::vector<std::string> paths;
  std::string name;
  std::string bundle;
  std::string prog;
  std::string url;
  std::string desc;
  std::vector<std::int64_t> pesi;  ///< one size per entry of `paths`
  /// One per entry of `paths` of a duplicate set: last write, nanoseconds since 1970.
  std::vector<std::int64_t> mtimesNs;
  std::vector<std::string> deboli;  ///< entries weakly tied to the group, shown apart
  std::string label;
  std::string dominio;  ///< "gui/" and the user id, or "system"
  bool spento = false;
};

/// The result of one category inside a section.
struct Finding {
  std::string id;
  std::string categoria;  ///< the category that found it; set by the engine
  std::string name;
  std::string mode;  ///< "delete": the page may move the entries to the Trash; "report": not
  std::string note;
  std::string hint;
  std::string kind;
  bool unmeasured = false;  ///< the size is not known and is not shown
  std::vector<Voce> items;
  std::vector<Group> groups;

  bool duplicati() const { return id == "duplicates"; }
  bool vuoto() const { return items.empty() && groups.empty(); }
  std::int64_t quante() const { return static_cast<std::int64_t>(items.size() + groups.size()); }
  /// Bytes that can be freed: all entries, and for duplicates what discarding frees.
  std::int64_t totale() const;
};

/// Bytes that discarding all copies of a duplicate set but one frees.
std::int64_t recuperabili(const Group& gruppo);

/// Sum of byte counts that stays at the largest value instead of wrapping round: the sizes may
/// come from a damaged file.
std::int64_t sommaSicura(std::int64_t a, std::int64_t b);

}  // namespace pellak
